#include <gmock/gmock.h>
#include <memory>

#include "agent/Orvex_SoftwareUpdateRegisteredProfile.h"
#include "tests/agent/SingleInstanceFixture.h"

namespace {

using testing::ElementsAre;

class RegisteredProfile : public test::SingleInstanceFixture {
 protected:
  RegisteredProfile()
      : SingleInstanceFixture(
            std::make_unique<Orvex_SoftwareUpdateRegisteredProfileClass>(),
            {"Orvex_SoftwareUpdateRegisteredProfile", "RegisteredProfile::getInstances"}) {}
};

TEST_F(RegisteredProfile, IsServedUnderItsName) {
  expectServedUnder("Orvex_RegisteredProfile");
  EXPECT_NE(dynamic_cast<Orvex_SoftwareUpdateRegisteredProfile*>(&enumerate()), nullptr);
}

TEST_F(RegisteredProfile, IsKeptFromTheFirstEnumerationOn) {
  expectTheFirstInstanceIsKept();
}

TEST_F(RegisteredProfile, LogsItsEnumerations) {
  expectRecords();
}

TEST_F(RegisteredProfile, DescribesTheProfileAndNothingElse) {
  test::expectFilled(enumerate(),
                     {{"InstanceID", "Orvex:SoftwareUpdate_Profile"},
                      {"SpecificationType", "2"},
                      {"RegisteredOrganization", "2"},
                      {"RegisteredName", "Software Update Profile"},
                      {"RegisteredVersion", "1.0.0"},
                      {"AdvertiseTypes", "{1}"},
                      {"AdvertiseTypeDescriptions", "{WS-Identify}"},
                      {"Caption", "Software Update Profile"},
                      {"Description", "Software Update Profile for Zolan(R) Ethernet Adapters"}});
}

TEST_F(RegisteredProfile, IsNamedByItsInstanceId) {
  EXPECT_THAT(test::keyNames(enumerate()), ElementsAre("InstanceID"));
  EXPECT_EQ(enumerate().getPath(),
            "Orvex_RegisteredProfile.InstanceID=\"Orvex:SoftwareUpdate_Profile\"");
}

TEST(RegisteredProfileValues, AreTakenAwayWhereNothingIsKnown) {
  Orvex_SoftwareUpdateRegisteredProfile profile;
  test::fillEveryProperty(profile);
  profile.setPropertyValues();
  EXPECT_TRUE(profile.getProperty("OtherRegisteredOrganization")->isNull());
  EXPECT_TRUE(profile.getProperty("ElementName")->isNull());
}

}  // namespace
