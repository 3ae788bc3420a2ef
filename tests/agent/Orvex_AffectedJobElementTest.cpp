#include <gmock/gmock.h>

#include "agent/Orvex_AffectedJobElement.h"
#include "tests/agent/Enumeration.h"
#include "tests/agent/FakeMidApi.h"
#include "tests/agent/FakeSiblings.h"

namespace {

using test::Ends;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kName = "Orvex_AffectedJobElement";

class AffectedJobElement : public testing::Test {
 protected:
  std::vector<Ends> enumerate() {
    m_log.clear();
    return test::enumerateEnds(m_provider, "AffectedElement", "AffectingElement");
  }

  test::LogCapture m_log;
  test::FakeMidApi m_midApi;
  test::FakeSiblings m_siblings;
  Orvex_AffectedJobElementClass m_provider;
};

TEST_F(AffectedJobElement, IsMissingWithoutAJob) {
  m_siblings.addPort("0000:03:00.0");
  m_siblings.addController({"0000:03:00.0"});
  EXPECT_THAT(enumerate(), IsEmpty());
  test::expectEnumeration(m_log, kName, {"getInstances", "return 0"});
}

TEST_F(AffectedJobElement, ConnectsAJobWithTheWholeAdapterAtEveryEnumeration) {
  m_siblings.addPort("0000:02:00.0");
  const std::string port1 = m_siblings.addPort("0000:03:00.0");
  const std::string port2 = m_siblings.addPort("0000:03:00.1");
  m_siblings.addController({"0000:02:00.0"});
  const std::string adapter = m_siblings.addController({"0000:03:00.1", "0000:03:00.0"});
  const std::string job = m_siblings.addJob("0000:03:00.0");
  const auto all = ElementsAre(Ends(adapter, job), Ends(port1, job), Ends(port2, job));
  EXPECT_THAT(enumerate(), all);
  EXPECT_THAT(enumerate(), all);
  test::expectEnumeration(m_log, kName, {"getInstances", "return 3"});
}

TEST_F(AffectedJobElement, PassesOverAJobWhosePortIsGone) {
  const std::string port = m_siblings.addPort("0000:04:00.0");
  const std::string adapter = m_siblings.addController({"0000:03:00.0", "0000:04:00.0"});
  m_siblings.addJob("0000:03:00.0");
  const std::string job = m_siblings.addJob("0000:04:00.0");
  EXPECT_THAT(enumerate(), ElementsAre(Ends(adapter, job), Ends(port, job)));
}

TEST_F(AffectedJobElement, PassesOverAJobWhosePortBelongsToNothing) {
  m_siblings.addPort("0000:03:00.0");
  m_siblings.addController({"0000:04:00.0"});
  m_siblings.addJob("0000:03:00.0");
  EXPECT_THAT(enumerate(), IsEmpty());
}

}  // namespace
