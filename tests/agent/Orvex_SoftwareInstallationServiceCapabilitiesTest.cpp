#include <gmock/gmock.h>

#include "agent/Orvex_SoftwareInstallationServiceCapabilities.h"
#include "tests/agent/Enumeration.h"

namespace {

using testing::ElementsAre;
using testing::Pair;
using testing::UnorderedElementsAre;

constexpr const char* kClass = "Orvex_SoftwareInstallationServiceCapabilities";

// The timed block bears the name of the service's.
class InstallationServiceCapabilities
    : public test::SingleInstanceTest<Orvex_SoftwareInstallationServiceCapabilitiesClass,
                                      Orvex_SoftwareInstallationServiceCapabilities> {
 protected:
  InstallationServiceCapabilities()
      : SingleInstanceTest({kClass, "SoftwareInstallationService::getInstances"}) {}
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
  EXPECT_THAT(
      test::filledProperties(enumerate()),
      UnorderedElementsAre(
          Pair("Caption", "Capabilities for Ethernet Firmware Update"),
          Pair("Description",
               "Capabilities for Firmware Update Service for Zolan(R) Ethernet Adapters"),
          Pair("ElementName", "Capabilities for Ethernet Firmware Update"),
          Pair("InstanceID", "Orvex:Capabilities@FirmwareUpdate"),
          Pair("SupportedAsynchronousActions", "{5, 3}"),
          Pair("SupportedSynchronousActions", "{2}"),
          Pair("SupportedTargetTypes", "{IMG_CLP, IMG_iSCSI, IMG_PXE, IMG_UEFI, IMG_FCoE}"),
          Pair("SupportedExtendedResourceTypes", "{2}"), Pair("CanAddToCollection", "false"),
          Pair("SupportedInstallOptions", "{3, 5, 32768}"), Pair("SupportedURISchemes", "{3}")));
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
  EXPECT_EQ(enumerate().getIdentity(), "Capabilities@FirmwareUpdate");
}

}  // namespace
