#include <gmock/gmock.h>

#include "core/CimInstance.h"
#include "core/CimPropertyRef.h"
#include "tests/core/TestInstance.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Throws.h"
#include "tests/support/VirtualSlots.h"

namespace {

using core::CimInstance;
using core::CimPropertyList;
using test::IsRecordOf;
using test::LogCapture;
using test::LogLevel;
using test::ThrowsExactly;
using testing::ElementsAre;
using testing::HasSubstr;

class Machine : public CimInstance {
 public:
  Machine() {
    addMethod("Start", static_cast<Method>(&Machine::start));
    addMethod("InstallFromURI", &CimInstance::InstallFromURI);
  }
  [[nodiscard]] std::string getClassName() const override { return "Test_Machine"; }

  using CimInstance::declareMethod;
  void registerAgain() { addMethod("Start", static_cast<Method>(&Machine::stop)); }

  std::uint32_t start(CimPropertyList* in, CimPropertyList* out, CimInstance** job) {
    startedWith = {in, out, job};
    return 4096;
  }
  std::uint32_t stop(CimPropertyList*, CimPropertyList*, CimInstance**) { return 7; }

  struct Arguments {
    CimPropertyList* in = nullptr;
    CimPropertyList* out = nullptr;
    CimInstance** job = nullptr;
  };
  Arguments startedWith;

  core::CimPropertyString Caption{"Caption", this};
  core::CimPropertyUint16 Speed{"Speed", this};
};

// A machine whose method is overridden further down.
class Service : public CimInstance {
 public:
  Service() { addMethod("InstallFromURI", &CimInstance::InstallFromURI); }
  std::uint32_t InstallFromURI(CimPropertyList*, CimPropertyList*, CimInstance**) override {
    return 5;
  }
  [[nodiscard]] std::string getClassName() const override { return "Test_Service"; }
};

TEST(CimInstance, IsNotDeletedAtFirst) {
  test::Instance instance;
  EXPECT_FALSE(instance.isDeleted());

  instance.setDeleted(true);
  EXPECT_TRUE(instance.isDeleted());
  instance.setDeleted(false);
  EXPECT_FALSE(instance.isDeleted());
}

TEST(CimInstance, FindsItsPropertiesByName) {
  test::Instance instance;

  EXPECT_EQ(instance.getProperty("Size"), &instance.Size);
  EXPECT_EQ(instance.getProperty("size"), nullptr);
  EXPECT_EQ(instance.getProperty(""), nullptr);
  EXPECT_EQ(instance.getProperties().size(), 2U);
}

TEST(CimInstanceMethods, AreCalledByNameWithTheirArgumentsAndResult) {
  Machine machine;
  CimPropertyList in;
  CimPropertyList out;
  CimInstance* job = nullptr;

  EXPECT_EQ(machine.invokeMethod("Start", &in, &out, &job), 4096U);
  EXPECT_EQ(machine.startedWith.in, &in);
  EXPECT_EQ(machine.startedWith.out, &out);
  EXPECT_EQ(machine.startedWith.job, &job);
}

TEST(CimInstanceMethods, LogTheirCall) {
  Machine machine;
  const LogCapture log;
  machine.invokeMethod("Start", nullptr, nullptr, nullptr);

  constexpr const char* kFunction = "core::CimInstance::invokeMethod";
  EXPECT_THAT(log.records(),
              ElementsAre(IsRecordOf("CimInstance", LogLevel::Debug, kFunction,
                                     "Checking, if Start method is supported"),
                          IsRecordOf("CimInstance", LogLevel::Debug, kFunction, "...is executed")));
}

TEST(CimInstanceMethods, AreLookedUpByCase) {
  Machine machine;

  for (const char* name : {"start", "START", "", "Start ", "installfromuri", "Reset"}) {
    EXPECT_THAT(
        [&] { machine.invokeMethod(name, nullptr, nullptr, nullptr); },
        ThrowsExactly<utils::ENotSupported>(std::string("Quorvel: ENotSupported:Method ") + name +
                                            " is not support by Test_Machine class"));
  }
}

TEST(CimInstanceMethods, LogTheSearchForAMissingOne) {
  Machine machine;
  const LogCapture log;
  EXPECT_THROW(machine.invokeMethod("Reset%s", nullptr, nullptr, nullptr), utils::ENotSupported);

  EXPECT_THAT(
      log.records(),
      ElementsAre(IsRecordOf("CimInstance", LogLevel::Debug, "core::CimInstance::invokeMethod",
                             "Checking, if Reset%s method is supported"),
                  IsRecordOf("Exception", LogLevel::Error, "utils::Exception::Exception",
                             "ENotSupported:Method Reset%s is not support by Test_Machine class")));
}

TEST(CimInstanceMethods, AreKnownByTheNamesUnderWhichTheyAreRegistered) {
  const Machine machine;
  EXPECT_TRUE(machine.hasMethod("Start"));
  EXPECT_FALSE(machine.hasMethod("start"));
  EXPECT_FALSE(machine.hasMethod("CheckSoftwareIdentity"));
}

TEST(CimInstanceMethods, AreReplacedByALaterOneOfTheSameName) {
  const LogCapture log;
  Machine machine;
  machine.registerAgain();

  EXPECT_EQ(machine.invokeMethod("Start", nullptr, nullptr, nullptr), 7U);
  EXPECT_THAT(log.messages("core::CimInstance::addMethod"),
              ElementsAre("Adding new Start method for Test_Machine class",
                          "Adding new InstallFromURI method for Test_Machine class",
                          "Adding new Start method for Test_Machine class"));
  EXPECT_THAT(log.records().front(),
              IsRecordOf("CimInstance", LogLevel::Debug, "core::CimInstance::addMethod",
                         "Adding new Start method for Test_Machine class"));
}

TEST(CimInstanceMethods, OfAnInstallationServiceAreNotSupportedByDefault) {
  Machine machine;
  const auto refuses =
      ThrowsExactly<utils::ENotSupported>("Quorvel: ENotSupported:Method is not supported");

  EXPECT_THAT([&] { machine.InstallFromURI(nullptr, nullptr, nullptr); }, refuses);
  EXPECT_THAT([&] { machine.InstallFromSoftwareIdentity(nullptr, nullptr, nullptr); }, refuses);
  EXPECT_THAT([&] { machine.CheckSoftwareIdentity(nullptr, nullptr, nullptr); }, refuses);
  EXPECT_THAT([&] { machine.invokeMethod("InstallFromURI", nullptr, nullptr, nullptr); }, refuses);
}

TEST(CimInstanceMethods, AreNotSupportedWhereTheyAreOnlyDeclared) {
  Machine machine;
  const LogCapture log;
  machine.declareMethod("Halt");
  machine.declareMethod("Start");
  EXPECT_THAT(log.records(), testing::IsEmpty());

  EXPECT_TRUE(machine.hasMethod("Halt"));
  EXPECT_FALSE(machine.offersMethod("Halt"));
  EXPECT_TRUE(machine.offersMethod("Start"));
  EXPECT_FALSE(machine.offersMethod("Stop"));
  EXPECT_THAT(
      [&] { machine.invokeMethod("Halt", nullptr, nullptr, nullptr); },
      ThrowsExactly<utils::ENotSupported>("Quorvel: ENotSupported:Method is not supported"));
  EXPECT_THAT(log.messages("core::CimInstance::invokeMethod"),
              ElementsAre("Checking, if Halt method is supported", "...is executed"));
  EXPECT_EQ(machine.invokeMethod("Start", nullptr, nullptr, nullptr), 4096U);
}

TEST(CimInstanceMethods, AreThoseOfTheMostDerivedClass) {
  Service service;

  EXPECT_EQ(service.invokeMethod("InstallFromURI", nullptr, nullptr, nullptr), 5U);
}

// New values for a machine, as a client sends them.
class CimInstanceModify : public testing::Test {
 protected:
  CimInstanceModify() {
    m_machine.Caption.setValue("old");
    m_machine.Speed.setValue(10);
    m_machine.Caption.setModifyEnabled(true);
    m_machine.Speed.setModifyEnabled(true);
  }

  void send(const std::string& caption) {
    m_caption.setValue(caption);
    m_values.add(&m_caption);
  }
  void send(std::uint16_t speed) {
    m_speed.setValue(speed);
    m_values.add(&m_speed);
  }

  Machine m_machine;
  CimPropertyList m_values;
  core::CimPropertyString m_caption{"Caption", nullptr};
  core::CimPropertyUint16 m_speed{"Speed", nullptr};
};

TEST_F(CimInstanceModify, TakesAllNewValues) {
  send("new");
  send(20);
  m_machine.modify(m_values);

  EXPECT_EQ(m_machine.Caption.getValue(), "new");
  EXPECT_EQ(m_machine.Speed.getValue(), 20);
}

TEST_F(CimInstanceModify, ChangesNothingForAnEmptyList) {
  EXPECT_NO_THROW(m_machine.modify(m_values));

  EXPECT_EQ(m_machine.Caption.getValue(), "old");
  EXPECT_EQ(m_machine.Speed.getValue(), 10);
}

TEST_F(CimInstanceModify, ChangesNothingWhenALaterValueIsRefused) {
  m_machine.Speed.setModifyEnabled(false);
  send("new");
  send(20);

  EXPECT_THAT([&] { m_machine.modify(m_values); },
              ThrowsExactly<utils::EForbidden>(
                  "Quorvel: EForbidden:Modyfying of Speed property is not allowed"));
  EXPECT_EQ(m_machine.Caption.getValue(), "old");
  EXPECT_EQ(m_machine.Speed.getValue(), 10);
}

TEST_F(CimInstanceModify, AssertsThatItHasThePropertyAndChangesNothingWithoutIt) {
  send("new");
  core::CimPropertyString unknown("Colour", nullptr);
  unknown.setValue("red");
  m_values.add(&unknown);

  EXPECT_THAT(
      [&] { m_machine.modify(m_values); },
      ThrowsExactly<utils::Exception>(test::IsAssertion("CimInstance", "property != NULL")));
  EXPECT_EQ(m_machine.Caption.getValue(), "old");
}

TEST_F(CimInstanceModify, FromAnotherTypeIsRefused) {
  core::CimPropertyString speed("Speed", nullptr);
  speed.setValue("20");
  m_values.add(&speed);

  EXPECT_THAT([&] { m_machine.modify(m_values); },
              ThrowsExactly<utils::EForbidden>(
                  "Quorvel: EForbidden:Property type 4 doesn't support assigning value from "
                  "property type 16"));
  EXPECT_EQ(m_machine.Speed.getValue(), 10);
}

// Takes a property of the machine away when another one is changed.
class Thief : public core::CimProperty::Listener {
 public:
  explicit Thief(Machine& machine) : m_machine(machine) {}

  void onModify(core::CimProperty* /*property*/, core::CimProperty* /*newValue*/) override {
    m_machine.getProperties().remove(&m_machine.Speed);
  }

 private:
  Machine& m_machine;
};

TEST_F(CimInstanceModify, AssertsAgainThatItHasThePropertyBeforeItIsChanged) {
  Thief thief(m_machine);
  m_machine.Caption.attachListener(&thief);
  send("new");
  send(20);
  const LogCapture log;
  const auto asserts =
      ThrowsExactly<utils::Exception>(test::IsAssertion("CimInstance", "property != NULL"));
  EXPECT_THAT([&] { m_machine.modify(m_values); }, asserts);
  EXPECT_EQ(m_machine.Caption.getValue(), "new");
  EXPECT_EQ(m_machine.Speed.getValue(), 10);

  // The property is missed from the start now, which is another line.
  EXPECT_THAT([&] { m_machine.modify(m_values); }, asserts);
  const std::vector<std::string> texts = log.messages("utils::Exception::Exception");
  ASSERT_EQ(texts.size(), 2U);
  EXPECT_NE(texts[0], texts[1]);
}

TEST(CimInstance, KeepsTheOrderOfItsVirtualOperations) {
  EXPECT_EQ(test::slotOf(&CimInstance::InstallFromSoftwareIdentity), 0U);
  EXPECT_EQ(test::slotOf(&CimInstance::InstallFromURI), 1U);
  EXPECT_EQ(test::slotOf(&CimInstance::CheckSoftwareIdentity), 2U);
  EXPECT_EQ(test::slotOf(&CimInstance::getClassName), 3U);
  EXPECT_EQ(test::slotOf(&CimInstance::modify), 4U);
  EXPECT_EQ(test::slotOf(&CimInstance::invokeMethod), 5U);
}

// An instance with a key of each kind that a path prints.
class Keyed : public CimInstance {
 public:
  [[nodiscard]] std::string getClassName() const override { return "Test_Keyed"; }

  core::CimPropertyUint16 Number{"Number", this};
  core::CimPropertyString Text{"Text", this};
  core::CimPropertyBoolean Flag{"Flag", this};
  core::CimPropertyRef Other{"Other", this};
};

TEST(CimInstancePath, WithoutKeysIsTheClassNameAndAPoint) {
  Keyed instance;

  EXPECT_EQ(instance.getPath(), "Test_Keyed.");
}

TEST(CimInstancePath, ListsTheKeysInPropertyOrderAndQuotesTexts) {
  Keyed instance;
  for (core::CimProperty* key : std::initializer_list<core::CimProperty*>{
           &instance.Other, &instance.Text, &instance.Flag, &instance.Number}) {
    key->setKey();
  }
  instance.Number.setValue(7);
  instance.Text.setValue("a b");
  instance.Flag.setValue(1);
  instance.Other.setText("Test_Fan.Name=\"x\"");

  EXPECT_EQ(instance.getPath(),
            R"(Test_Keyed.Number=7,Text="a b",Flag=1,Other="Test_Fan.Name=\"x\"")");
}

TEST(CimInstancePath, LeavesOutWhatIsNoKey) {
  Keyed instance;
  instance.Text.setKey();
  instance.Text.setValue("x");
  instance.Number.setValue(7);

  EXPECT_EQ(instance.getPath(), "Test_Keyed.Text=\"x\"");
}

TEST(CimInstancePath, PutsABackslashBeforeADoubleQuoteOnly) {
  EXPECT_EQ(test::Instance(R"(a"b\c)").getPath(), R"(Test_Thing.Name="a\"b\c")");
}

TEST(CimInstancePath, KeepsTheCommaOfAValue) {
  EXPECT_EQ(test::Instance("a,").getPath(), R"(Test_Thing.Name="a,")");
}

TEST(CimInstancePath, PrintsAKeyWithoutAValueAsEmptyText) {
  Keyed instance;
  instance.Text.setKey();

  EXPECT_EQ(instance.getPath(), "Test_Keyed.Text=\"\"");
}

TEST(CimInstancePath, TakesTheOverridingKey) {
  class Derived : public test::Instance {
   public:
    Derived() : Instance("base") {}
    core::CimPropertyString Name{"Name", this};
  };
  Derived instance;
  EXPECT_EQ(instance.getPath(), "Test_Thing.");

  instance.Name.setKey();
  instance.Name.setValue("derived");
  EXPECT_EQ(instance.getPath(), "Test_Thing.Name=\"derived\"");
}

}  // namespace
