#include <deque>
#include <gmock/gmock.h>
#include <stdexcept>
#include <vector>

#include "daemon/JobsEnd.h"
#include "tests/support/LogCapture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class WaitForJobs : public testing::Test {
 protected:
  static constexpr int kFails = -1;

  // Waits while the counts are these, one after the other.
  void wait(std::deque<int> counts) {
    quorveld::waitForJobs(
        [&counts] {
          const int count = counts.front();
          counts.pop_front();
          if (count == kFails) {
            throw std::runtime_error("no list");
          }
          return static_cast<unsigned>(count);
        },
        [this](unsigned running) { m_reports.push_back(running); }, [this] { ++m_pauses; });
    EXPECT_THAT(counts, IsEmpty());
  }

  std::vector<unsigned> m_reports;
  unsigned m_pauses = 0;
};

TEST_F(WaitForJobs, ReturnsAtOnceWhenNoneRuns) {
  wait({0});
  EXPECT_THAT(m_reports, IsEmpty());
  EXPECT_EQ(m_pauses, 0u);
}

TEST_F(WaitForJobs, WaitsForTheLastOneAndReportsEachNewNumber) {
  wait({2, 2, 1, 1, 0});
  EXPECT_THAT(m_reports, ElementsAre(2u, 1u));
  EXPECT_EQ(m_pauses, 4u);
}

TEST_F(WaitForJobs, GoesOnWhereACountFailsAndLogsIt) {
  const test::LogCapture log;
  wait({1, kFails, kFails, 1, 0});
  EXPECT_EQ(m_pauses, 4u);
  EXPECT_THAT(log.messages("quorveld::waitForJobs"),
              ElementsAre("The running jobs cannot be counted: no list"));
}

}  // namespace
