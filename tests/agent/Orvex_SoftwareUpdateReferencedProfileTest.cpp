#include <gmock/gmock.h>

#include "agent/Orvex_SoftwareUpdateReferencedProfile.h"
#include "tests/agent/Enumeration.h"
#include "tests/agent/FakeSiblings.h"

namespace {

using test::Ends;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kFunction = "Orvex_SoftwareUpdateReferencedProfileClass::getInstances";
constexpr const char* kUpdateProfile = "Orvex:SoftwareUpdate_Profile";

class ReferencedProfile : public testing::Test {
 protected:
  std::vector<Ends> enumerate() {
    m_log.clear();
    return test::enumerateEnds(m_provider, "Antecedent", "Dependent");
  }

  test::LogCapture m_log;
  test::FakeSiblings m_siblings;
  Orvex_SoftwareUpdateReferencedProfileClass m_provider;
};

TEST_F(ReferencedProfile, ConnectsTheTwoProfilesAtEveryEnumeration) {
  const std::string update = m_siblings.addRegisteredProfile(kUpdateProfile);
  const std::string port = m_siblings.addRegisteredProfile("Orvex:EthernetPort_Profile");
  EXPECT_THAT(enumerate(), ElementsAre(Ends(port, update)));
  EXPECT_THAT(enumerate(), ElementsAre(Ends(port, update)));
  EXPECT_THAT(
      m_log.messages(kFunction),
      ElementsAre("getInstances", "Orvex_RegisteredProfile return 2 instances", "return 1"));
}

TEST_F(ReferencedProfile, NeedsThePortProfile) {
  m_siblings.addRegisteredProfile(kUpdateProfile);
  m_siblings.addRegisteredProfile("Orvex:ethernetport_profile");
  EXPECT_THAT(enumerate(), IsEmpty());
}

}  // namespace
