#include <algorithm>
#include <cstdlib>
#include <gmock/gmock.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Os/Environment.h"
#include "agent/Orvex_SoftwareInstallationService.h"
#include "core/CimPath.h"
#include "core/CimPropertyRef.h"
#include "tests/agent/FakeJobFactory.h"
#include "tests/agent/FakeSiblings.h"
#include "tests/agent/SingleInstanceFixture.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Throws.h"
#include "tests/support/Variables.h"

namespace {

using test::LogLevel;
using test::ThrowsExactly;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

constexpr const char* kClass = "Orvex_SoftwareInstallationService";

class InstallationServiceClass : public test::SingleInstanceFixture {
 protected:
  InstallationServiceClass()
      : SingleInstanceFixture(std::make_unique<Orvex_SoftwareInstallationServiceClass>(),
                              {kClass, "SoftwareInstallationService::getInstances"}) {}

  static void nameComputer(const std::string& name) { os::setEnvironment("COMPUTERNAME", name); }

  std::string systemName() {
    return dynamic_cast<Orvex_SoftwareInstallationService&>(enumerate()).SystemName.getValue();
  }
};

TEST_F(InstallationServiceClass, ServesTheServiceUnderItsName) {
  expectServedUnder(kClass);
}

TEST_F(InstallationServiceClass, KeepsTheInstanceOfTheFirstEnumeration) {
  expectTheFirstInstanceIsKept();
}

TEST_F(InstallationServiceClass, KeepsTheComputersNameOfTheFirstEnumeration) {
  nameComputer("first");
  enumerate();
  nameComputer("second");
  EXPECT_EQ(systemName(), "first");
}

TEST_F(InstallationServiceClass, LogsItsEnumerations) {
  expectRecords();
}

TEST_F(InstallationServiceClass, DescribesTheServiceAndNothingElse) {
  nameComputer("host7");
  test::expectFilled(enumerate(),
                     {{"Caption", "Ethernet Firmware Update"},
                      {"Description", "Firmware Update Service for Zolan(R) Ethernet Adapters"},
                      {"OperationalStatus", "{2}"},
                      {"SystemCreationClassName", "CIM_UnitaryComputerSystem"},
                      {"SystemName", "host7"},
                      {"CreationClassName", kClass},
                      {"Name", "Orvex:FirmwareUpdate"},
                      {"PrimaryOwnerName", "Zolan Corporation"},
                      {"PrimaryOwnerContact", "https://www.zolan.example"}});
}

TEST_F(InstallationServiceClass, NamesTheServiceByItsKeys) {
  nameComputer("host7");
  EXPECT_EQ(core::CimPath(enumerate().getPath()).getClassName(), kClass);
  EXPECT_THAT(core::CimPath(enumerate().getPath()),
              UnorderedElementsAre(Pair("SystemCreationClassName", "CIM_UnitaryComputerSystem"),
                                   Pair("SystemName", "host7"), Pair("CreationClassName", kClass),
                                   Pair("Name", "Orvex:FirmwareUpdate")));
}

TEST_F(InstallationServiceClass, CallsAComputerWithoutANameLocalhost) {
  nameComputer("");
  EXPECT_EQ(systemName(), "localhost");
}

TEST_F(InstallationServiceClass, CallsAComputerWhoseNameIsNotDefinedLocalhost) {
  test::unsetVariable("COMPUTERNAME");
  EXPECT_EQ(systemName(), "localhost");
}

TEST(InstallationService, RegistersItsMethods) {
  const test::LogCapture log;
  const Orvex_SoftwareInstallationService service;

  EXPECT_THAT(log.messages("core::CimInstance::addMethod"),
              ElementsAre("Adding new InstallFromSoftwareIdentity method for "
                          "Orvex_SoftwareInstallationService class",
                          "Adding new InstallFromURI method for "
                          "Orvex_SoftwareInstallationService class",
                          "Adding new CheckSoftwareIdentity method for "
                          "Orvex_SoftwareInstallationService class"));
}

TEST(InstallationService, TakesTheValuesAwayThatItDoesNotHave) {
  Orvex_SoftwareInstallationService service;
  test::fillEveryProperty(service);
  service.setPropertyValues();
  for (const char* name : {"InstanceID",
                           "ElementName",
                           "Generation",
                           "InstallDate",
                           "StatusDescriptions",
                           "Status",
                           "HealthState",
                           "PrimaryStatus",
                           "DetailedStatus",
                           "OperatingStatus",
                           "CommunicationStatus",
                           "EnabledState",
                           "OtherEnabledState",
                           "RequestedState",
                           "EnabledDefault",
                           "TimeOfLastStateChange",
                           "AvailableRequestedStates",
                           "TransitioningToState",
                           "StartMode",
                           "Started"}) {
    EXPECT_TRUE(service.getProperty(name)->isNull()) << name;
  }
}

class InstallFromUri : public testing::Test {
 protected:
  InstallFromUri() {
    m_uri.setValue("file:///image.rom");
    m_target.setText(m_siblings.addPort("0000:03:00.0"));
    m_options.setValue({5});
    m_values.setValue({"IMG_PXE"});
  }

  // Invokes the method with the arguments but those of the names.
  std::uint32_t invokeWithout(const std::vector<std::string>& names) {
    core::CimPropertyList in;
    for (core::CimProperty* argument : arguments()) {
      if (std::find(names.begin(), names.end(), argument->getName()) == names.end()) {
        in.add(argument);
      }
    }
    core::CimPropertyList out;
    m_log.clear();
    const std::uint32_t returned = m_service.invokeMethod("InstallFromURI", &in, &out, &m_job);
    EXPECT_EQ(out.size(), 0u);
    return returned;
  }

  std::uint32_t invoke() { return invokeWithout({}); }

  auto invoking(const std::vector<std::string>& left) {
    return [this, left] { static_cast<void>(invokeWithout(left)); };
  }

  auto invokingWithNull(core::CimProperty& argument) {
    argument.setNull();
    return invoking({});
  }

  std::vector<core::CimProperty*> arguments() { return {&m_uri, &m_target, &m_options, &m_values}; }

  std::vector<std::string> messages() const {
    return m_log.messages("Orvex_SoftwareInstallationService::InstallFromURI");
  }

  test::LogCapture m_log;
  test::FakeSiblings m_siblings;
  std::optional<test::FakeJobFactory> m_factory{std::in_place};
  Orvex_SoftwareInstallationService m_service;
  Orvex_SoftwareInstallationService m_created;  // stands for a job
  core::CimInstance* m_job = nullptr;
  core::CimPropertyString m_uri{"URI", nullptr};
  core::CimPropertyRef m_target{"Target", nullptr};
  core::CimPropertyUint16_arr m_options{"InstallOptions", nullptr};
  core::CimPropertyString_arr m_values{"InstallOptionsValues", nullptr};
};

TEST_F(InstallFromUri, HandsOutTheJob) {
  m_factory->created = &m_created;

  EXPECT_EQ(invoke(), 4096u);

  EXPECT_EQ(m_job, &m_created);
  ASSERT_EQ(m_factory->requests.size(), 1u);
  const test::FakeJobFactory::Request& request = m_factory->requests[0];
  EXPECT_EQ(request.target, "0000:03:00.0");
  EXPECT_EQ(request.uri, "file:///image.rom");
  EXPECT_THAT(request.installOptions, ElementsAre(5));
  EXPECT_THAT(request.installOptionsValues, ElementsAre("IMG_PXE"));
}

TEST_F(InstallFromUri, HandsOutNoJobWithAnotherAnswer) {
  m_factory->created = &m_created;
  m_factory->result = agent::kJobTargetInUse;

  EXPECT_EQ(invoke(), 6u);
  EXPECT_EQ(m_job, nullptr);
}

TEST_F(InstallFromUri, IsTimed) {
  invoke();

  const std::vector<test::LogRecord> records = m_log.records();
  EXPECT_THAT(records, test::HasRecord(LogLevel::Debug, "utils::TimeStamp::Init",
                                       testing::HasSubstr("Entering 'InstallFromURI'")));
  EXPECT_THAT(records.back().message, testing::HasSubstr("Leaving  'InstallFromURI' after "));
}

TEST_F(InstallFromUri, WantsEveryArgument) {
  for (const core::CimProperty* argument : arguments()) {
    const std::string& name = argument->getName();
    EXPECT_THAT(invoking({name}), ThrowsExactly<utils::EUnspecifiedError>(
                                      "Quorvel: EUnspecifiedError:Expected " + name + " argument"));
  }
  EXPECT_THAT(m_factory->requests, IsEmpty());
}

TEST_F(InstallFromUri, NamesTheFirstArgumentThatIsMissing) {
  const auto missing = [this](const std::vector<std::string>& names, const std::string& first) {
    EXPECT_THAT(invoking(names), ThrowsExactly<utils::EUnspecifiedError>(
                                     "Quorvel: EUnspecifiedError:Expected " + first + " argument"));
  };
  missing({"URI", "Target", "InstallOptions", "InstallOptionsValues"}, "URI");
  missing({"Target", "InstallOptions", "InstallOptionsValues"}, "Target");
  missing({"InstallOptions", "InstallOptionsValues"}, "InstallOptions");
}

TEST_F(InstallFromUri, LooksForMissingArgumentsBeforeNulls) {
  m_uri.setNull();
  EXPECT_THAT(invoking({"InstallOptionsValues"}),
              ThrowsExactly<utils::EUnspecifiedError>(
                  "Quorvel: EUnspecifiedError:Expected InstallOptionsValues argument"));
}

TEST_F(InstallFromUri, WantsArgumentsWithoutAList) {
  EXPECT_THAT(
      [this] { m_service.InstallFromURI(nullptr, nullptr, nullptr); },
      ThrowsExactly<utils::EUnspecifiedError>("Quorvel: EUnspecifiedError:Expected URI argument"));
}

TEST_F(InstallFromUri, TakesAnArgumentOfAnotherTypeForMissing) {
  core::CimPropertyString options("InstallOptions", nullptr);
  options.setValue("5");
  core::CimPropertyList in;
  for (core::CimProperty* argument :
       std::vector<core::CimProperty*>{&m_uri, &m_target, &options, &m_values}) {
    in.add(argument);
  }
  EXPECT_THAT([&] { m_service.InstallFromURI(&in, nullptr, nullptr); },
              ThrowsExactly<utils::EUnspecifiedError>(
                  "Quorvel: EUnspecifiedError:Expected InstallOptions argument"));
}

TEST_F(InstallFromUri, RefusesNullArguments) {
  const auto refused = [](const std::string& name) {
    return ThrowsExactly<utils::EUnspecifiedError>("Quorvel: EUnspecifiedError:" + name +
                                                   " argument is set to NULL. It is not allowed");
  };
  EXPECT_THAT(invokingWithNull(m_options), refused("InstallOptions"));
  EXPECT_THAT(invokingWithNull(m_target), refused("Target"));
  EXPECT_THAT(invokingWithNull(m_uri), refused("URI"));
  EXPECT_THAT(m_factory->requests, IsEmpty());
}

TEST_F(InstallFromUri, AcceptsNullValuesAndPassesWhatTheyHold) {
  m_values.setNull();
  EXPECT_EQ(invoke(), 4096u);
  ASSERT_EQ(m_factory->requests.size(), 1u);
  EXPECT_THAT(m_factory->requests[0].installOptionsValues, ElementsAre("IMG_PXE"));
}

TEST_F(InstallFromUri, RefusesOptionsWithoutARecord) {
  m_options.setValue({5, 4});
  EXPECT_EQ(invoke(), 5u);
  EXPECT_THAT(messages(), IsEmpty());
  EXPECT_THAT(m_factory->requests, IsEmpty());
}

TEST_F(InstallFromUri, LooksAtTheOptionsBeforeTheTarget) {
  m_target.setText("Orvex_EthernetPort.DeviceID=\"nowhere\"");
  m_options.setValue({});
  EXPECT_EQ(invoke(), 5u);
  EXPECT_THAT(messages(), IsEmpty());
}

// Its path is an argument, and arguments are read before anything is decided.
TEST_F(InstallFromUri, ReadsTheTargetBeforeTheOptions) {
  m_target.setText("malformed");
  m_options.setValue({});
  EXPECT_THROW(invoke(), utils::ESyntaxError);
  EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(InstallFromUri, LeavesAMalformedTargetToTheCaller) {
  m_target.setText("malformed");
  EXPECT_THROW(invoke(), utils::ESyntaxError);
}

TEST_F(InstallFromUri, NamesATargetThatIsAnInstanceByItsPath) {
  Orvex_SoftwareInstallationService stranger;
  stranger.setPropertyValues();
  m_target.setTarget(&stranger);
  EXPECT_EQ(invoke(), 5u);
  EXPECT_THAT(messages(),
              ElementsAre("Firmware Update cannot find instance '" + stranger.getPath() + "'"));
}

}  // namespace
