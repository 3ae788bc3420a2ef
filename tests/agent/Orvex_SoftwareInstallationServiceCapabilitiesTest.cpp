#include <gmock/gmock.h>
#include <memory>

#include "agent/Orvex_SoftwareInstallationServiceCapabilities.h"
#include "tests/agent/SingleInstanceFixture.h"
#include "tests/support/VirtualSlots.h"

namespace {

using testing::ElementsAre;

constexpr const char* kClass = "Orvex_SoftwareInstallationServiceCapabilities";

// The timed block bears the name of the service's.
class InstallationServiceCapabilities : public test::SingleInstanceFixture {
 protected:
  InstallationServiceCapabilities()
      : SingleInstanceFixture(
            std::make_unique<Orvex_SoftwareInstallationServiceCapabilitiesClass>(),
            {kClass, "SoftwareInstallationService::getInstances"}) {}
};

TEST_F(InstallationServiceCapabilities, AreServedUnderTheirName) {
  expectServedUnder(kClass);
}

TEST_F(InstallationServiceCapabilities, AreKeptFromTheFirstEnumerationOn) {
  expectTheFirstInstanceIsKept();
}

TEST_F(InstallationServiceCapabilities, LogTheirEnumerations) {
  expectRecords();
}

TEST_F(InstallationServiceCapabilities, SayWhatTheServiceCanDoAndNothingElse) {
  test::expectFilled(
      enumerate(),
      {{"Caption", "Capabilities for Ethernet Firmware Update"},
       {"Description", "Capabilities for Firmware Update Service for Zolan(R) Ethernet Adapters"},
       {"ElementName", "Capabilities for Ethernet Firmware Update"},
       {"InstanceID", "Orvex:Capabilities@FirmwareUpdate"},
       {"SupportedAsynchronousActions", "{5, 3}"},
       {"SupportedSynchronousActions", "{2}"},
       {"SupportedTargetTypes", "{IMG_CLP, IMG_iSCSI, IMG_PXE, IMG_UEFI, IMG_FCoE}"},
       {"SupportedExtendedResourceTypes", "{2}"},
       {"CanAddToCollection", "false"},
       {"SupportedInstallOptions", "{3, 5, 32768}"},
       {"SupportedURISchemes", "{3}"}});
}

TEST_F(InstallationServiceCapabilities, SayTheSameAfterASecondEnumeration) {
  const std::vector<test::NamedValue> first = test::filledProperties(enumerate());
  EXPECT_EQ(test::filledProperties(enumerate()), first);
}

TEST_F(InstallationServiceCapabilities, AreNamedByTheirInstanceId) {
  EXPECT_THAT(test::keyNames(enumerate()), ElementsAre("InstanceID"));
  EXPECT_EQ(enumerate().getPath(),
            "Orvex_SoftwareInstallationServiceCapabilities."
            "InstanceID=\"Orvex:Capabilities@FirmwareUpdate\"");
  EXPECT_EQ(dynamic_cast<Orvex_SoftwareInstallationServiceCapabilities&>(enumerate()).getIdentity(),
            "Capabilities@FirmwareUpdate");
}

TEST(InstallationServiceCapabilitiesOperations, KeepTheOrderOfTheVirtualOnes) {
  using Capabilities = Orvex_SoftwareInstallationServiceCapabilities;
  EXPECT_EQ(test::slotOf(&Capabilities::getIdentity), 8u);
  EXPECT_EQ(test::slotOf(&Capabilities::setPropertyValues), 9u);
}

TEST(InstallationServiceCapabilitiesValues, AreTakenAwayWhereNothingIsKnown) {
  Orvex_SoftwareInstallationServiceCapabilities capabilities;
  test::fillEveryProperty(capabilities);
  capabilities.setPropertyValues();
  for (const char* name : {"Generation", "OtherSupportedExtendedResourceTypeDescriptions",
                           "SupportedExtendedResourceTypesMajorVersions",
                           "SupportedExtendedResourceTypesMinorVersions",
                           "SupportedExtendedResourceTypesRevisionNumbers",
                           "SupportedExtendedResourceTypesBuildNumbers"}) {
    EXPECT_TRUE(capabilities.getProperty(name)->isNull()) << name;
  }
}

}  // namespace
