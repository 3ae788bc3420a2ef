#include <gmock/gmock.h>

#include "agent/Orvex_SoftwareUpdateElementConformsToProfile.h"
#include "tests/agent/Enumeration.h"
#include "tests/agent/FakeSiblings.h"

namespace {

using test::Ends;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kFunction = "Orvex_SoftwareUpdateElementConformsToProfileClass::getInstances";
constexpr const char* kUpdateProfile = "Orvex:SoftwareUpdate_Profile";

class ElementConformsToProfile : public testing::Test {
 protected:
  std::vector<Ends> enumerate() {
    m_log.clear();
    return test::enumerateEnds(m_provider, "ConformantStandard", "ManagedElement");
  }

  test::LogCapture m_log;
  test::FakeSiblings m_siblings;
  Orvex_SoftwareUpdateElementConformsToProfileClass m_provider;
};

TEST_F(ElementConformsToProfile, ConnectsTheServiceOnceAtEveryEnumeration) {
  m_siblings.addRegisteredProfile("Orvex:EthernetPort_Profile");
  const std::string profile = m_siblings.addRegisteredProfile(kUpdateProfile);
  const std::string service = m_siblings.addService();
  EXPECT_THAT(enumerate(), ElementsAre(Ends(profile, service)));
  EXPECT_THAT(enumerate(), ElementsAre(Ends(profile, service)));
  EXPECT_THAT(m_log.messages(kFunction),
              ElementsAre("getInstances", "Orvex_RegisteredProfile return 2 instances",
                          "Orvex_SoftwareInstallationService return 1 instances",
                          "['Orvex:EthernetPort_Profile']", "['Orvex:SoftwareUpdate_Profile']",
                          "['Orvex:FirmwareUpdate']", "return 1"));
}

TEST_F(ElementConformsToProfile, WantsTheProfilesExactName) {
  m_siblings.addService();
  m_siblings.addRegisteredProfile("Orvex:softwareupdate_profile");
  EXPECT_THAT(enumerate(), IsEmpty());
}

}  // namespace
