#include <gmock/gmock.h>

#include "agent/Orvex_OwningJobElement.h"
#include "tests/agent/Enumeration.h"
#include "tests/agent/FakeMidApi.h"
#include "tests/agent/FakeSiblings.h"
#include "tests/support/Throws.h"

namespace {

using test::Ends;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kName = "Orvex_OwningJobElement";

class OwningJobElement : public testing::Test {
 protected:
  std::vector<Ends> enumerate() {
    m_log.clear();
    return test::enumerateEnds(m_provider, "OwningElement", "OwnedElement");
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
  Orvex_OwningJobElementClass m_provider;
};

TEST_F(OwningJobElement, IsMissingWithoutAJob) {
  EXPECT_THAT(enumerate(), IsEmpty());
  test::expectEnumeration(m_log, kName, {"getInstances", "return 0"});
}

TEST_F(OwningJobElement, ConnectsTheServiceWithEachJobAtEveryEnumeration) {
  const std::string job1 = m_siblings.addJob("0000:03:00.0");
  const std::string job2 = m_siblings.addJob("0000:04:00.0");  // no port is served
  EXPECT_THAT(enumerate(), ElementsAre(Ends(m_service, job1), Ends(m_service, job2)));
  EXPECT_THAT(enumerate(), ElementsAre(Ends(m_service, job1), Ends(m_service, job2)));
  test::expectEnumeration(m_log, kName, {"getInstances", "return 2"});
  m_siblings.clear("Orvex_ConcreteJob");
  EXPECT_THAT(enumerate(), IsEmpty());
}

TEST_F(OwningJobElement, WantsOneService) {
  m_siblings.addJob("0000:03:00.0");
  m_siblings.addService();
  expectRefusal();
  m_siblings.clear("Orvex_SoftwareInstallationService");
  expectRefusal();
}

}  // namespace
