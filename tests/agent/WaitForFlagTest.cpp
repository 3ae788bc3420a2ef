#include <chrono>
#include <gmock/gmock.h>

#include "agent/JobThread.h"
#include "tests/support/FakeClock.h"

namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::Pair;

class WaitForFlag : public testing::Test {
 protected:
  int wait(int budget) { return agent::waitForFlag(m_flag, budget, m_clock); }

  agent::LockedFlag m_flag;
  test::FakeClock m_clock;
};

TEST_F(WaitForFlag, ReturnsTheWholeBudgetForASetFlag) {
  m_flag.set();
  EXPECT_EQ(wait(100), 100);
  EXPECT_EQ(wait(0), 0);
  EXPECT_THAT(m_clock.sleeps(), testing::IsEmpty());
}

TEST_F(WaitForFlag, UsesTheBudgetUpInStepsOfFiftyMilliseconds) {
  EXPECT_EQ(wait(100), 0);
  EXPECT_EQ(wait(30), -20);
  EXPECT_EQ(wait(0), 0);
  EXPECT_EQ(wait(-5), -5);
  EXPECT_THAT(m_clock.sleeps(), ElementsAre(Pair(milliseconds(50), 3)));
}

TEST_F(WaitForFlag, ReturnsWhatIsLeftWhenTheFlagIsSetMeanwhile) {
  m_clock.afterEachSleep([this](int number) {
    if (number == 2) {
      m_flag.set();
    }
  });
  EXPECT_EQ(wait(3000), 2900);
}

}  // namespace
