#include <functional>
#include <gmock/gmock.h>
#include <memory>
#include <stdexcept>
#include <string>

#include "core/CimPropertyRef.h"
#include "tests/support/LogCapture.h"
#include "tests/wbem/ServerFixture.h"
#include "wbem/ShownClasses.h"

namespace {

using test::className;
using test::FakeInstance;
using test::given;
using test::IsError;
using test::objectName;
using testing::_;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class Speedy final : public FakeInstance {
 public:
  explicit Speedy(const std::string& id) : FakeInstance("Vendor_Fan", id) { Speed.setValue(7); }

  core::CimPropertyUint16 Speed{"Speed", this};
};

// An agent that has no more than the three operations, and tells of its classes when it is asked
// for one of them alone.
class BareAgent final : public core::CimAgent {
 public:
  BareAgent() : CimAgent("Bare") {}

  bool hasClass(std::string name) override { return name == "Vendor_Hidden"; }
  core::InstanceList::Iterator getInstances(std::string /*name*/) override {
    return m_hidden.getInstances();
  }

  test::FakeProvider m_hidden{"Vendor_Hidden"};
};

// A server with an agent that declares its classes, and one that does not.
class ShownClasses : public test::ServerFixture {
 protected:
  ShownClasses() { m_broker.addAgent(&m_silent); }

  std::string enumerate(const std::string& name) {
    return ask("EnumerateInstances", {given("ClassName", className(name))});
  }

  test::FakeAgent m_silent{"Silent"};
  test::FakeProvider& m_fans = m_silent.serve("Vendor_Fan");
};

TEST_F(ShownClasses, AreServedBesideDeclaredOnes) {
  m_fans.add(std::make_unique<FakeInstance>("Vendor_Fan", "f1"));
  m_fans.add(std::make_unique<Speedy>("f2"));
  EXPECT_THAT(enumerate("Vendor_Fan"),
              AllOf(HasSubstr("<VALUE>f1</VALUE>"), HasSubstr("<VALUE>f2</VALUE>"),
                    HasSubstr("NAME=\"Speed\"")));
  EXPECT_THAT(
      ask("GetInstance", {given("InstanceName", objectName("vendor_fan.InstanceID=\"f2\""))}),
      AllOf(HasSubstr("<VALUE>7</VALUE>"), Not(HasSubstr("ERROR"))));
  EXPECT_THAT(ask("GetClass", {given("ClassName", className("Vendor_Fan"))}),
              AllOf(HasSubstr("<CLASS NAME=\"Vendor_Fan\">"), HasSubstr("NAME=\"InstanceID\""),
                    HasSubstr("NAME=\"Speed\"")));
  EXPECT_THAT(ask("EnumerateClassNames"), HasSubstr("\"Vendor_Fan\""));
}

TEST_F(ShownClasses, AreThereBeforeTheyHaveAnInstanceAndAreSeenWithTheFirst) {
  EXPECT_EQ(enumerate("Vendor_Fan"), test::returned(""));
  m_fans.add(std::make_unique<Speedy>("f1"));
  EXPECT_THAT(enumerate("Vendor_Fan"), HasSubstr("<VALUE>7</VALUE>"));
}

TEST_F(ShownClasses, AreNoHarmToOthersWhereTheyFail) {
  m_fans.onEnumeration = [] { throw std::runtime_error("no fans"); };
  EXPECT_THAT(enumerate("Vendor_Fan"), IsError(1, "no fans"));
  EXPECT_THAT(enumerate("Test_Port"), HasSubstr("Test_Port"));
}

TEST_F(ShownClasses, AreRecordedOnceForTheirAgent) {
  const test::LogCapture log;
  enumerate("Vendor_Fan");
  m_fans.add(std::make_unique<Speedy>("f1"));
  enumerate("Vendor_Fan");
  EXPECT_THAT(log.messages("wbem::Server::getNamespaces"),
              testing::ElementsAre(HasSubstr("Agent 'Silent' declares none of its classes")));
}

TEST_F(ShownClasses, HaveNoMethods) {
  m_fans.add(std::make_unique<FakeInstance>("Vendor_Fan", "f1"));
  EXPECT_THAT(invoke(objectName("Vendor_Fan.InstanceID=\"f1\""), "Stop"), IsError(17, _));
}

TEST_F(ShownClasses, AreFoundByTheNamesThatRequestsGive) {
  BareAgent bare;
  bare.m_hidden.add(std::make_unique<FakeInstance>("Vendor_Hidden", "h1"));
  m_broker.addAgent(&bare);
  EXPECT_THAT(enumerate("Vendor_Nothing"), IsError(5, _));
  EXPECT_THAT(enumerate("Vendor_Hidden"), HasSubstr("<VALUE>h1</VALUE>"));
}

TEST_F(ShownClasses, AddNothingToASchemaThatIsDeclared) {
  core::CimBroker broker;
  broker.addAgent(&m_agent);
  const auto declared = broker.getSchema();
  const wbem::ShownClasses shown(broker, declared, {});
  EXPECT_EQ(shown.schema(), declared);
  EXPECT_FALSE(shown.hasNews(broker));
  EXPECT_FALSE(wbem::ShownClasses::isServed(broker, "Test_Device"));
}

}  // namespace
