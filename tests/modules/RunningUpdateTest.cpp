// What can happen to an update while it runs, through the loaded modules.

#include <gmock/gmock.h>
#include <string>

#include "tests/modules/Firmware.h"
#include "tests/modules/ModuleHost.h"
#include "tests/support/WaitUntil.h"

namespace {

using test::Bytes;
using test::firmware;
using test::JobReport;
using test::kAdapter;
using test::kCompleted;
using test::kFirstPort;
using test::kOtherAdapter;
using test::kOtherPort;
using test::kSecondPort;

class RunningUpdate : public testing::Test {
 protected:
  RunningUpdate() {
    m_host.makeAdapter(kAdapter, m_old);
    m_host.makeAdapter(kOtherAdapter, m_old);
  }

  std::uint32_t install(const std::string& port) {
    return m_host.install(port, m_host.makeImage(m_new));
  }

  // Starts an update that stays at half its way.
  void hangAtHalf() {
    m_host.describe(kAdapter, "\"faults\": {\"hang\": {\"atPercent\": 50}}");
    m_host.load();
    ASSERT_EQ(install(kFirstPort), 4096u);
    ASSERT_TRUE(test::waitUntil([this] { return m_host.job().percent == 50; }));
  }

  void goOn() { m_host.describe(kAdapter, ""); }

  const Bytes m_old = firmware(2);
  const Bytes m_new = firmware(3);
  test::ModuleHost m_host;
};

TEST_F(RunningUpdate, KeepsASecondOneOut) {
  hangAtHalf();
  EXPECT_EQ(m_host.job(), (JobReport{4, 50, 0, ""}));
  EXPECT_EQ(m_host.flash(kAdapter), m_old);

  EXPECT_EQ(install(kFirstPort), 6u);
  EXPECT_EQ(install(kSecondPort), 2u);
  EXPECT_EQ(install(kOtherPort), 2u);
  EXPECT_FALSE(m_host.hasNewJob());

  goOn();
  EXPECT_EQ(m_host.awaitEnd(), kCompleted);
  EXPECT_EQ(m_host.flash(kAdapter), m_new);
  EXPECT_EQ(m_host.flash(kOtherAdapter), m_old);
}

TEST_F(RunningUpdate, ReportsAFailedWrite) {
  m_host.describe(kAdapter,
                  "\"faults\": {\"write\": {\"atPercent\": 40, \"code\": 17, \"text\": \"The "
                  "sector %s does not take data\"}}");
  m_host.load();

  ASSERT_EQ(install(kFirstPort), 4096u);

  EXPECT_EQ(m_host.awaitEnd(), (JobReport{10, 100, 17, "The sector %s does not take data"}));
  EXPECT_EQ(m_host.flash(kAdapter), m_old);
}

TEST_F(RunningUpdate, ReportsAFailedCapabilityWord) {
  m_host.describe(kAdapter,
                  "\"faults\": {\"capabilityWord\": {\"code\": 18, \"text\": \"No word\"}}");
  m_host.load();

  ASSERT_EQ(install(kFirstPort), 4096u);

  EXPECT_EQ(m_host.awaitEnd(), (JobReport{10, 100, 18, "No word"}));
  EXPECT_EQ(m_host.flash(kAdapter), m_old);
}

TEST_F(RunningUpdate, MayFollowAFailedOne) {
  m_host.describe(kAdapter,
                  "\"faults\": {\"write\": {\"atPercent\": 0, \"code\": 17, \"text\": \"x\"}}");
  m_host.load();
  ASSERT_EQ(install(kFirstPort), 4096u);
  ASSERT_EQ(m_host.awaitEnd().state, 10);
  goOn();

  ASSERT_EQ(install(kFirstPort), 4096u);

  EXPECT_EQ(m_host.awaitEnd(), kCompleted);
  EXPECT_EQ(m_host.flash(kAdapter), m_new);
}

}  // namespace
