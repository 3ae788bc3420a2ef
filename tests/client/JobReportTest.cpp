#include <gmock/gmock.h>

#include "client/JobReport.h"

namespace {

using client::JobReport;
using client::Value;

constexpr const char* kJobPath = "Orvex_ConcreteJob.InstanceID=\"job 1\"";
constexpr auto kValue = client::PropertySnapshot::Kind::Value;

TEST(JobReport, TellsHowAJobEnded) {
  JobReport report;
  report.state = cim::JobState::Completed;
  EXPECT_EQ(report.outcome(), "Completed");
  report.state = cim::JobState::Exception;
  EXPECT_EQ(report.outcome(), "Exception, error 0");
  report.errorCode = 17;
  report.errorText = "Sector stuck";
  EXPECT_EQ(report.outcome(), "Exception, error 17: Sector stuck");
}

TEST(JobReport, TellsNoCommandsToATerminal) {
  JobReport report;
  report.state = cim::JobState::Exception;
  report.errorText = "\x1b[2J";
  EXPECT_EQ(report.outcome(), "Exception, error 0: \\x1b[2J");
  // The name of a program is its owner's to choose.
  report.flashHolder = "to\nol\x1b[2J, process 7";
  EXPECT_EQ(report.outcome(),
            "Exception, error 0: \\x1b[2J (the flash was held by to\\nol\\x1b[2J, process 7)");
}

TEST(JobReport, TellsWhyNoFlashLockCouldBeHad) {
  JobReport report;
  report.state = cim::JobState::Exception;
  report.errorCode = 4;
  report.errorText = "Timeout Error";
  report.lockFailure = "cannot lock \x1b: No locks available";
  EXPECT_EQ(report.outcome(),
            "Exception, error 4: Timeout Error (the flash lock cannot be had: cannot lock \\x1b: "
            "No locks available)");
}

TEST(JobReport, IsReadFromAnInstance) {
  const JobReport report = client::reportOf({"Orvex_ConcreteJob",
                                             kJobPath,
                                             {{"JobState", kValue, Value(4)},
                                              {"PercentComplete", kValue, Value(42)},
                                              {"ErrorCode", kValue, Value(3)},
                                              {"ErrorDescription", kValue, Value("no")}}});
  EXPECT_EQ(report.path, kJobPath);
  EXPECT_EQ(report.state, cim::JobState::Running);
  EXPECT_EQ(report.percent, 42U);
  EXPECT_EQ(report.errorCode, 3U);
  EXPECT_EQ(report.errorText, "no");
}

TEST(JobReport, LeavesOutWhatIsOfAnotherType) {
  const JobReport report = client::reportOf({"Orvex_ConcreteJob",
                                             kJobPath,
                                             {{"InstanceID", kValue, Value(5)},
                                              {"JobState", kValue, Value("Running")},
                                              {"PercentComplete", kValue, Value(1e300)},
                                              {"ErrorCode", kValue, Value::array({Value(1)})},
                                              {"ErrorDescription", kValue, Value(7)}}});
  EXPECT_EQ(report.state, cim::JobState{});
  EXPECT_EQ(report.percent, 0U);
  EXPECT_EQ(report.errorCode, 0U);
  EXPECT_EQ(report.errorText, "");
  EXPECT_EQ(report.properties[1].value, Value("Running"));
}

TEST(JobId, IsTheKeyOfItsPath) {
  EXPECT_EQ(client::jobIdOf(kJobPath), "job 1");
  EXPECT_EQ(client::jobIdOf("C.Other=1"), "");
  EXPECT_EQ(client::jobIdOf("no path"), "");
}

}  // namespace
