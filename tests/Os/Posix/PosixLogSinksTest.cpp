// Where the platform's own sinks write.

#include <algorithm>
#include <gmock/gmock.h>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/Programs.h"

namespace {

test::ProgramResult probe(const std::string& level,
                          const std::vector<std::string>& arguments = {}) {
  return test::runProgram(test::programBeside("log_sinks_probe"), arguments,
                          {{"ZOLAN_Quorvel_LOG_LEVEL", level}});
}

// Returns the lines of a text, sorted.
std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream rest(text);
  for (std::string line; std::getline(rest, line);) {
    lines.push_back(line);
  }
  std::sort(lines.begin(), lines.end());
  return lines;
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

TEST(LogSinks, KeepTheRecordsOfTwoThreadsWhole) {
  const test::ProgramResult result = probe("3", {"threads"});

  std::vector<std::string> logged;
  std::vector<std::string> copied;
  for (const char thread : {'a', 'b'}) {
    const std::string record = "OrvexQuorvel: Probe:3:probe: debug: " + std::string(40, thread);
    logged.insert(logged.end(), 100, "user.debug Zolan Quorvel Provider: " + record);
    copied.insert(copied.end(), 100, record);
  }
  EXPECT_EQ(linesOf(result.output), logged);
  EXPECT_EQ(linesOf(result.errors), copied);
}

}  // namespace
