#include <gmock/gmock.h>
#include <memory>

#include "agent/Instances.h"
#include "agent/Orvex_SoftwareUpdateReferencedProfile.h"
#include "tests/agent/AssociationFixture.h"

namespace {

using test::Ends;
using test::Targets;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kProfileClass = "Orvex_RegisteredProfile";
constexpr const char* kPortProfile = "Orvex:EthernetPort_Profile";
constexpr const char* kUpdateProfile = "Orvex:SoftwareUpdate_Profile";

class ReferencedProfile : public test::AssociationFixture {
 protected:
  ReferencedProfile()
      : AssociationFixture(
            std::make_unique<Orvex_SoftwareUpdateReferencedProfileClass>(),
            {"Orvex_SoftwareUpdateReferencedProfile", "ReferencedProfile::getInstances"},
            "Antecedent", "Dependent") {}
};

TEST_F(ReferencedProfile, IsServedUnderItsName) {
  EXPECT_EQ(m_provider.getName(), "Orvex_ReferencedProfile");
}

TEST_F(ReferencedProfile, AsksForTheProfiles) {
  EXPECT_THAT(requests(), ElementsAre(kProfileClass));
}

TEST_F(ReferencedProfile, ConnectsTheTwoProfilesAtEveryEnumeration) {
  const std::string update = m_siblings.addRegisteredProfile(kUpdateProfile);
  const std::string port = m_siblings.addRegisteredProfile(kPortProfile);
  EXPECT_THAT(enumerate(), ElementsAre(Ends(port, update)));
  EXPECT_THAT(enumerate(), ElementsAre(Ends(port, update)));
  expectRecords({"getInstances", "Orvex_RegisteredProfile return 2 instances", "return 1"});
}

TEST_F(ReferencedProfile, HoldsItsReferencesOnly) {
  m_siblings.addRegisteredProfile(kUpdateProfile);
  m_siblings.addRegisteredProfile(kPortProfile);
  expectReferencesOnly();
}

TEST_F(ReferencedProfile, TakesTheLastOfEachProfile) {
  for (const char* profile : {kPortProfile, kUpdateProfile, kUpdateProfile, kPortProfile}) {
    m_siblings.addRegisteredProfile(profile);
  }
  const auto profiles = agent::findInstances(kProfileClass);
  EXPECT_THAT(enumerateTargets(), ElementsAre(Targets(profiles[3], profiles[2])));
}

TEST_F(ReferencedProfile, NeedsThePortProfile) {
  m_siblings.addRegisteredProfile(kUpdateProfile);
  m_siblings.addRegisteredProfile("Orvex:ethernetport_profile");
  EXPECT_THAT(enumerate(), IsEmpty());
  expectRecords({"getInstances", "Orvex_RegisteredProfile return 2 instances", "return 0"});
}

TEST_F(ReferencedProfile, NeedsTheUpdateProfile) {
  m_siblings.addRegisteredProfile(kPortProfile);
  m_siblings.addRegisteredProfile("Orvex:softwareupdate_profile");
  EXPECT_THAT(enumerate(), IsEmpty());
}

TEST_F(ReferencedProfile, IsGoneWithAProfile) {
  m_siblings.addRegisteredProfile(kUpdateProfile);
  m_siblings.addRegisteredProfile(kPortProfile);
  EXPECT_EQ(enumerate().size(), 1u);
  m_siblings.clear(kProfileClass);
  EXPECT_THAT(enumerate(), IsEmpty());
  expectRecords({"getInstances", "Orvex_RegisteredProfile return 0 instances", "return 0"});
}

}  // namespace
