#include <gmock/gmock.h>
#include <sstream>

#include "cli/ProgressView.h"

namespace {

using cli::ProgressStyle;
using std::chrono::seconds;

class ProgressViewTest : public testing::Test {
 protected:
  // Shows the percentages, one in each second.
  void show(ProgressStyle style, const std::vector<unsigned>& percentages) {
    cli::ProgressView view(m_out, style, "updating it");
    seconds elapsed{0};
    for (const unsigned percent : percentages) {
      view.show(percent, elapsed++);
    }
    view.endLine();
  }

  std::ostringstream m_out;
};

TEST_F(ProgressViewTest, RewritesOneLineOnATerminal) {
  show(ProgressStyle::Live, {0, 42, 100});
  EXPECT_EQ(m_out.str(),
            "\rupdating it  [....................]    0 %  00:00"
            "\rupdating it  [########............]   42 %  00:01"
            "\rupdating it  [####################]  100 %  00:02\n");
}

TEST_F(ProgressViewTest, WritesALiveLineOnlyWhenItChanges) {
  cli::ProgressView view(m_out, ProgressStyle::Live, "x");
  view.show(1, seconds(0));
  const std::string once = m_out.str();
  view.show(1, seconds(0));
  EXPECT_EQ(m_out.str(), once);
}

TEST_F(ProgressViewTest, GoesOnBelowWhatWasPrintedBetween) {
  cli::ProgressView view(m_out, ProgressStyle::Live, "x");
  view.show(1, seconds(0));
  view.endLine();
  view.endLine();
  view.show(1, seconds(0));
  EXPECT_EQ(m_out.str(),
            "\rx  [....................]    1 %  00:00\n"
            "\rx  [....................]    1 %  00:00");
}

TEST_F(ProgressViewTest, PrintsALineForEachTenthElsewhere) {
  show(ProgressStyle::Lines, {0, 0, 9, 10, 19, 35, 36, 44, 45, 99, 100, 100});
  EXPECT_EQ(m_out.str(),
            "updating it: 0 %, 00:00\n"
            "updating it: 10 %, 00:03\n"
            "updating it: 35 %, 00:05\n"
            "updating it: 45 %, 00:08\n"
            "updating it: 99 %, 00:09\n"
            "updating it: 100 %, 00:10\n");
}

TEST_F(ProgressViewTest, PrintsNothingWhenNotWanted) {
  show(ProgressStyle::None, {0, 50, 100});
  EXPECT_EQ(m_out.str(), "");
}

TEST_F(ProgressViewTest, ShowsWhoHasTheFlashInTheLiveLine) {
  cli::ProgressView view(m_out, ProgressStyle::Live, "x");
  view.showWait("tool, process 4711, user root, for 00:12", seconds(0));
  view.showWait("tool, process 4711, user root, for 00:12", seconds(0));
  view.show(1, seconds(2));
  view.endLine();
  EXPECT_EQ(m_out.str(),
            "\rx  waiting for the flash: tool, process 4711, user root, for 00:12"
            "\rx  [....................]    1 %  00:02                           \n");
}

TEST_F(ProgressViewTest, SaysWhoHasTheFlashEveryHalfMinuteElsewhere) {
  cli::ProgressView view(m_out, ProgressStyle::Lines, "x");
  for (const int second : {0, 1, 29, 30, 31, 61}) {
    view.showWait("tool, for " + std::to_string(second), seconds(second));
  }
  EXPECT_EQ(m_out.str(),
            "x: waiting for the flash: tool, for 0\n"
            "x: waiting for the flash: tool, for 30\n"
            "x: waiting for the flash: tool, for 61\n");
}

// The name of a program is its owner's to choose.
TEST_F(ProgressViewTest, TellsNoCommandsOfAHolderToATerminal) {
  cli::ProgressView view(m_out, ProgressStyle::Lines, "updating x");
  view.showWait("to\nol\x1b[2J", seconds(0));
  EXPECT_EQ(m_out.str(), "updating x: waiting for the flash: to\\nol\\x1b[2J\n");
}

TEST_F(ProgressViewTest, SaysNothingOfAWaitWhenNotWanted) {
  cli::ProgressView view(m_out, ProgressStyle::None, "x");
  view.showWait("tool", seconds(0));
  EXPECT_EQ(m_out.str(), "");
}

TEST_F(ProgressViewTest, TakesMoreThanAllForAll) {
  show(ProgressStyle::Lines, {4000});
  EXPECT_EQ(m_out.str(), "updating it: 100 %, 00:00\n");
}

}  // namespace
