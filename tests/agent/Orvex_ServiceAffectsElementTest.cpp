#include <gmock/gmock.h>

#include "agent/Orvex_ServiceAffectsElement.h"
#include "tests/agent/Enumeration.h"
#include "tests/agent/FakeMidApi.h"
#include "tests/agent/FakeSiblings.h"
#include "tests/support/Throws.h"

namespace {

using test::Ends;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kName = "Orvex_ServiceAffectsElement";

class ServiceAffectsElement : public testing::Test {
 protected:
  std::vector<Ends> enumerate() {
    m_log.clear();
    return test::enumerateEnds(m_provider, "AffectedElement", "AffectingElement");
  }

  void expectRefusal() {
    EXPECT_THAT([this] { static_cast<void>(enumerate()); },
                test::ThrowsExactly<utils::Exception>(
                    test::IsAssertion(kName, "(int)services.size() == 1")));
    test::expectEnumeration(m_log, kName, {"getInstances"});
  }

  test::LogCapture m_log;
  test::FakeMidApi m_midApi;
  test::FakeSiblings m_siblings;
  std::string m_service = m_siblings.addService();
  Orvex_ServiceAffectsElementClass m_provider;
};

TEST_F(ServiceAffectsElement, ListsEachControllerBeforeItsPorts) {
  const std::string port30 = m_siblings.addPort("0000:03:00.0");
  const std::string port40 = m_siblings.addPort("0000:04:00.0");
  const std::string port31 = m_siblings.addPort("0000:03:00.1");
  const std::string port41 = m_siblings.addPort("0000:04:00.1");
  const std::string first = m_siblings.addController({"0000:03:00.1", "0000:03:00.0"});
  const std::string second = m_siblings.addController({"0000:04:00.0", "0000:04:00.1"});
  EXPECT_THAT(enumerate(), ElementsAre(Ends(first, m_service), Ends(port30, m_service),
                                       Ends(port31, m_service), Ends(second, m_service),
                                       Ends(port40, m_service), Ends(port41, m_service)));
  test::expectEnumeration(m_log, kName, {"getInstances", "return 6"});
}

TEST_F(ServiceAffectsElement, LeavesOutWhatCannotBeUpdated) {
  m_siblings.addPort("0000:03:00.0");
  const std::string port = m_siblings.addPort("0000:03:00.1");
  const std::string adapter = m_siblings.addController({"0000:03:00.0", "0000:03:00.1"});
  m_midApi.fixedAdapters = {"0000:03:00.0"};
  EXPECT_THAT(enumerate(), ElementsAre(Ends(adapter, m_service), Ends(port, m_service)));
  m_midApi.fixedAdapters = {"0000:03:00.0", "0000:03:00.1"};
  EXPECT_THAT(enumerate(), IsEmpty());
}

TEST_F(ServiceAffectsElement, ListsFirmwareImagesThatCanBeInstalled) {
  const std::string first = m_siblings.addSoftwareIdentity({"a", 4, {"IMG_PXE"}});
  m_siblings.addSoftwareIdentity({"b", 4, {}});
  m_siblings.addSoftwareIdentity({"c", 3, {"IMG_PXE"}});
  const std::string last = m_siblings.addSoftwareIdentity({"d", 4, {"IMG_UEFI", "IMG_PXE"}});
  EXPECT_THAT(enumerate(), ElementsAre(Ends(first, m_service), Ends(last, m_service)));
}

TEST_F(ServiceAffectsElement, WantsOneService) {
  m_siblings.addService();
  expectRefusal();
  m_siblings.clear("Orvex_SoftwareInstallationService");
  expectRefusal();
}

}  // namespace
