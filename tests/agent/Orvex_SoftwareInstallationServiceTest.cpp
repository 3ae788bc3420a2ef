#include <cstdlib>
#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <vector>

#include "Os/Environment.h"
#include "agent/Orvex_SoftwareInstallationService.h"
#include "core/CimPath.h"
#include "tests/agent/SingleInstanceFixture.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Throws.h"
#include "tests/support/Variables.h"
#include "tests/support/VirtualSlots.h"

namespace {

using testing::ElementsAre;
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

TEST(InstallationService, KeepsTheOrderOfItsVirtualOperations) {
  using Service = Orvex_SoftwareInstallationService;
  EXPECT_EQ(test::slotOf(&Service::InstallFromSoftwareIdentity), 0u);
  EXPECT_EQ(test::slotOf(&Service::InstallFromURI), 1u);
  EXPECT_EQ(test::slotOf(&Service::CheckSoftwareIdentity), 2u);
  EXPECT_EQ(test::slotOf(&Service::getClassName), 3u);
  EXPECT_EQ(test::slotOf(&Service::setPropertyValues), 8u);
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

// The schema gives every service this method; this one is always on.
TEST(InstallationService, DoesNotSupportAChangeOfItsState) {
  Orvex_SoftwareInstallationService service;
  EXPECT_THAT(
      [&] { service.invokeMethod("RequestStateChange", nullptr, nullptr, nullptr); },
      test::ThrowsExactly<utils::ENotSupported>("Quorvel: ENotSupported:Method is not supported"));
  EXPECT_THAT([&] { service.invokeMethod("requestStateChange", nullptr, nullptr, nullptr); },
              test::ThrowsExactly<utils::ENotSupported>(
                  "Quorvel: ENotSupported:Method requestStateChange is not support by "
                  "Orvex_SoftwareInstallationService class"));
}

}  // namespace
