// What the agents log while a host that is not ours loads and unloads them: it does nothing for the
// records.

#include <gmock/gmock.h>
#include <string>

#include "tests/support/Programs.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

void expectRecord(const std::string& task, const std::string& moment, const std::string& record) {
  const test::ProgramResult result =
      test::runProgram(test::programBeside("records_probe"), {task, QUORVEL_TEST_MODULE_DIR},
                       {{"ZOLAN_Quorvel_LOG_LEVEL", "1"}});
  EXPECT_EQ(result.exitStatus, 0) << result.errors;
  EXPECT_THAT(result.output,
              AllOf(HasSubstr(moment + "\n"), HasSubstr("event: OrvexQuorvel: "), HasSubstr(record),
                    Not(HasSubstr("within the loader")), Not(HasSubstr("stays"))));
}

TEST(LoadRecords, OfInitialisersReachTheEventLog) {
  expectRecord("initialisers", "the update agent is loaded",
               ": error: The flash lock cannot be had, and no update can be made: ");
}

TEST(LoadRecords, OfAnEntryThatFailsReachTheEventLog) {
  expectRecord("entry", "the update agent is not loaded",
               ": error: The module could not register its agent: Could not create mutex ");
}

TEST(LoadRecords, OfTheEndReachTheEventLogBeforeTheCoreGoes) {
  expectRecord("end", "the update agent is loaded", ": error: Could not close mutex ");
}

}  // namespace
