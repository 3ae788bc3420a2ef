#include <gmock/gmock.h>
#include <memory>

#include "agent/Instances.h"
#include "agent/Orvex_SoftwareUpdateElementConformsToProfile.h"
#include "tests/agent/AssociationFixture.h"

namespace {

using test::Ends;
using test::Targets;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kProfileClass = "Orvex_RegisteredProfile";
constexpr const char* kServiceClass = "Orvex_SoftwareInstallationService";
constexpr const char* kUpdateProfile = "Orvex:SoftwareUpdate_Profile";

class ElementConformsToProfile : public test::AssociationFixture {
 protected:
  ElementConformsToProfile()
      : AssociationFixture(std::make_unique<Orvex_SoftwareUpdateElementConformsToProfileClass>(),
                           {"Orvex_SoftwareUpdateElementConformsToProfile",
                            "ElementConformsToProfile::getInstances"},
                           "ConformantStandard", "ManagedElement") {}
};

TEST_F(ElementConformsToProfile, IsServedUnderItsName) {
  EXPECT_EQ(m_provider.getName(), "Orvex_ElementConformsToProfile");
}

TEST_F(ElementConformsToProfile, AsksForTheProfilesBeforeTheServices) {
  EXPECT_THAT(requests(), ElementsAre(kProfileClass, kServiceClass));
}

TEST_F(ElementConformsToProfile, ConnectsTheServiceOnceAtEveryEnumeration) {
  m_siblings.addRegisteredProfile("Orvex:EthernetPort_Profile");
  const std::string profile = m_siblings.addRegisteredProfile(kUpdateProfile);
  const std::string service = m_siblings.addService();
  EXPECT_THAT(enumerate(), ElementsAre(Ends(profile, service)));
  EXPECT_THAT(enumerate(), ElementsAre(Ends(profile, service)));
  expectRecords({"getInstances", "Orvex_RegisteredProfile return 2 instances",
                 "Orvex_SoftwareInstallationService return 1 instances",
                 "['Orvex:EthernetPort_Profile']", "['Orvex:SoftwareUpdate_Profile']",
                 "['Orvex:FirmwareUpdate']", "return 1"});
}

TEST_F(ElementConformsToProfile, HoldsItsReferencesOnly) {
  m_siblings.addRegisteredProfile(kUpdateProfile);
  m_siblings.addService();
  expectReferencesOnly();
}

TEST_F(ElementConformsToProfile, ConnectsEveryServiceWithEveryMatchingProfile) {
  m_siblings.addRegisteredProfile(kUpdateProfile);
  m_siblings.addRegisteredProfile("Orvex:EthernetPort_Profile");
  m_siblings.addRegisteredProfile(kUpdateProfile);
  m_siblings.addService();
  m_siblings.addService();
  const auto profiles = agent::findInstances(kProfileClass);
  const auto services = agent::findInstances(kServiceClass);
  m_log.clear();

  EXPECT_THAT(enumerateTargets(),
              ElementsAre(Targets(profiles[0], services[0]), Targets(profiles[0], services[1]),
                          Targets(profiles[2], services[0]), Targets(profiles[2], services[1])));
  expectRecords({"getInstances", "Orvex_RegisteredProfile return 3 instances",
                 "Orvex_SoftwareInstallationService return 2 instances",
                 "['Orvex:SoftwareUpdate_Profile']", "['Orvex:FirmwareUpdate']",
                 "['Orvex:FirmwareUpdate']", "['Orvex:EthernetPort_Profile']",
                 "['Orvex:SoftwareUpdate_Profile']", "['Orvex:FirmwareUpdate']",
                 "['Orvex:FirmwareUpdate']", "return 4"});
}

TEST_F(ElementConformsToProfile, IsMissingWithoutTheService) {
  m_siblings.addRegisteredProfile(kUpdateProfile);
  EXPECT_THAT(enumerate(), IsEmpty());
  expectRecords({"getInstances", "Orvex_RegisteredProfile return 1 instances",
                 "Orvex_SoftwareInstallationService return 0 instances",
                 "['Orvex:SoftwareUpdate_Profile']", "return 0"});
}

TEST_F(ElementConformsToProfile, WantsTheProfilesExactName) {
  m_siblings.addService();
  m_siblings.addRegisteredProfile("Orvex:softwareupdate_profile");
  m_siblings.addRegisteredProfile("Orvex:SoftwareUpdate_Profile ");
  EXPECT_THAT(enumerate(), IsEmpty());
}

TEST_F(ElementConformsToProfile, FollowsWhatIsServed) {
  m_siblings.addRegisteredProfile(kUpdateProfile);
  m_siblings.addService();
  EXPECT_EQ(enumerate().size(), 1u);
  m_siblings.clear(kProfileClass);
  EXPECT_THAT(enumerate(), IsEmpty());
}

}  // namespace
