#include <gmock/gmock.h>

#include "agent/Orvex_SoftwareUpdateRegisteredProfile.h"
#include "tests/agent/Enumeration.h"

namespace {

using testing::ElementsAre;
using testing::Pair;
using testing::UnorderedElementsAre;

class RegisteredProfile
    : public test::SingleInstanceTest<Orvex_SoftwareUpdateRegisteredProfileClass,
                                      Orvex_SoftwareUpdateRegisteredProfile> {
 protected:
  RegisteredProfile()
      : SingleInstanceTest(
            {"Orvex_SoftwareUpdateRegisteredProfile", "RegisteredProfile::getInstances"}) {}
};

TEST_F(RegisteredProfile, IsServedUnderItsName) {
  expectServedUnder("Orvex_RegisteredProfile");
}

TEST_F(RegisteredProfile, IsKeptFromTheFirstEnumerationOn) {
  expectTheFirstInstanceIsKept();
}

TEST_F(RegisteredProfile, LogsItsEnumerations) {
  expectRecords();
}

TEST_F(RegisteredProfile, DescribesTheProfileAndNothingElse) {
  EXPECT_THAT(
      test::filledProperties(enumerate()),
      UnorderedElementsAre(
          Pair("InstanceID", "Orvex:SoftwareUpdate_Profile"), Pair("SpecificationType", "2"),
          Pair("RegisteredOrganization", "2"), Pair("RegisteredName", "Software Update Profile"),
          Pair("RegisteredVersion", "1.0.0"), Pair("AdvertiseTypes", "{1}"),
          Pair("AdvertiseTypeDescriptions", "{WS-Identify}"),
          Pair("Caption", "Software Update Profile"),
          Pair("Description", "Software Update Profile for Zolan(R) Ethernet Adapters")));
}

TEST_F(RegisteredProfile, IsNamedByItsInstanceId) {
  EXPECT_THAT(test::keyNames(enumerate()), ElementsAre("InstanceID"));
  EXPECT_EQ(enumerate().getPath(),
            "Orvex_RegisteredProfile.InstanceID=\"Orvex:SoftwareUpdate_Profile\"");
}

}  // namespace
