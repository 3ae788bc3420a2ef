// Where the platform's own sinks write.

#include <gmock/gmock.h>
#include <string>

#include "tests/support/Programs.h"

namespace {

test::ProgramResult probe(const std::string& level) {
  return test::runProgram(test::programBeside("log_sinks_probe"), {},
                          {{"ZOLAN_Quorvel_LOG_LEVEL", level}});
}

const std::string kDebugLine =  // NOLINT(cert-err58-cpp)
    "OrvexQuorvel: Probe:1:probe: debug: d %d%%\n";
const std::string kErrorLine =  // NOLINT(cert-err58-cpp)
    "OrvexQuorvel: Probe:2:probe: error: e %n\n";

std::string entry(const std::string& level, const std::string& line) {
  return "user." + level + " Zolan Quorvel Provider: " + line;
}

TEST(LogSinks, GetNothingAtLevelZero) {
  const test::ProgramResult result = probe("0");

  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors, "");
}

TEST(LogSinks, PutErrorsIntoTheSystemLog) {
  const test::ProgramResult result = probe("1");

  EXPECT_EQ(result.output, entry("error", kErrorLine));
  EXPECT_EQ(result.errors, "");
}

TEST(LogSinks, PutDebugEntriesIntoTheSystemLogAtDebugPriority) {
  const test::ProgramResult result = probe("2");

  EXPECT_EQ(result.output,
            entry("debug", kDebugLine) + entry("error", kErrorLine) + entry("debug", kErrorLine));
  EXPECT_EQ(result.errors, "");
}

TEST(LogSinks, CopyEntriesToStandardErrorWithTheirPerCentSignsInterpreted) {
  const test::ProgramResult result = probe("3");

  EXPECT_EQ(result.output,
            entry("debug", kDebugLine) + entry("error", kErrorLine) + entry("debug", kErrorLine));
  EXPECT_EQ(result.errors, "OrvexQuorvel: Probe:1:probe: debug: d %d%\n" + kErrorLine);
}

}  // namespace
