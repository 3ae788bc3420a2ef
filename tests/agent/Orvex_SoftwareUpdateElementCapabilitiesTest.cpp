#include <gmock/gmock.h>
#include <memory>

#include "agent/Orvex_SoftwareUpdateElementCapabilities.h"
#include "tests/agent/AssociationFixture.h"

namespace {

using test::Ends;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Key;
using testing::Pair;

constexpr const char* kServiceClass = "Orvex_SoftwareInstallationService";
constexpr const char* kCapabilitiesClass = "Orvex_SoftwareInstallationServiceCapabilities";
constexpr const char* kOneService = "(int)services.size() == 1";
constexpr const char* kOneCapabilities = "(int)capabilities.size() == 1";

class ElementCapabilities : public test::AssociationFixture {
 protected:
  ElementCapabilities()
      : AssociationFixture(std::make_unique<Orvex_SoftwareUpdateElementCapabilitiesClass>(),
                           {"Orvex_SoftwareUpdateElementCapabilities"}, "ManagedElement",
                           "Capabilities") {}

  std::string m_service = m_siblings.addService();
  std::string m_capabilities = m_siblings.addCapabilities();
};

TEST_F(ElementCapabilities, AreServedUnderTheirName) {
  EXPECT_EQ(m_provider.getName(), "Orvex_ElementCapabilities");
}

TEST_F(ElementCapabilities, ConnectTheServiceWithItsCapabilities) {
  EXPECT_THAT(enumerate(), ElementsAre(Ends(m_service, m_capabilities)));
  expectRecords({"getInstances", "return 1"});
}

TEST_F(ElementCapabilities, AreDefaultAndCurrent) {
  core::CimInstance& association = *test::instancesOf(m_provider).at(0);
  EXPECT_THAT(
      test::filledProperties(association),
      ElementsAre(Key("ManagedElement"), Key("Capabilities"), Pair("Characteristics", "{2, 3}")));
  EXPECT_THAT(test::keyNames(association), ElementsAre("ManagedElement", "Capabilities"));
}

TEST_F(ElementCapabilities, AreMadeOnceAndKept) {
  EXPECT_THAT(requests(), ElementsAre(kServiceClass, kCapabilitiesClass));
  const core::CimInstance* const first = test::instancesOf(m_provider).at(0);

  EXPECT_THAT(requests(), IsEmpty());
  EXPECT_THAT(test::instancesOf(m_provider), ElementsAre(first));
  m_log.clear();
  EXPECT_THAT(enumerate(), ElementsAre(Ends(m_service, m_capabilities)));
  expectRecords({"getInstances", "return 1"});
}

TEST_F(ElementCapabilities, StayWhenTheServiceIsDoubled) {
  enumerate();
  m_siblings.addService();
  m_siblings.addCapabilities();
  EXPECT_EQ(enumerate().size(), 1u);
}

TEST_F(ElementCapabilities, WantOneServiceAndTryAgain) {
  m_siblings.clear(kServiceClass);
  expectRefusal(kOneService);
  m_siblings.addService();
  m_siblings.addService();
  expectRefusal(kOneService);

  m_siblings.clear(kServiceClass);
  m_siblings.addService();
  EXPECT_THAT(enumerate(), ElementsAre(Ends(m_service, m_capabilities)));
}

TEST_F(ElementCapabilities, WantOneCapabilitiesInstanceAndTryAgain) {
  m_siblings.clear(kCapabilitiesClass);
  expectRefusal(kOneCapabilities);
  m_siblings.addCapabilities();
  m_siblings.addCapabilities();
  expectRefusal(kOneCapabilities);

  m_siblings.clear(kCapabilitiesClass);
  m_siblings.addCapabilities();
  EXPECT_THAT(enumerate(), ElementsAre(Ends(m_service, m_capabilities)));
}

TEST_F(ElementCapabilities, CountTheServicesFirst) {
  m_siblings.clear(kServiceClass);
  m_siblings.clear(kCapabilitiesClass);
  expectRefusal(kOneService);
  EXPECT_THAT(m_siblings.takeRequests(),
              testing::IsSupersetOf({kServiceClass, kCapabilitiesClass}));
}

}  // namespace
