#include <filesystem>
#include <gmock/gmock.h>
#include <string>

#include "host/ModuleLoader.h"
#include "tests/support/Programs.h"
#include "tests/support/Regex.h"

namespace {

namespace fs = std::filesystem;

using testing::HasSubstr;

// Runs the probe, since the modules that a process loads stay.
test::ProgramResult probe(const std::string& task) {
  return test::runProgram(test::programBeside("module_probe"), {task, QUORVEL_TEST_MODULE_DIR});
}

TEST(WindowsModuleLoader, FindsTheModulesBesideTheProgram) {
  const fs::path program = test::programBeside("host_test");
  ASSERT_TRUE(fs::exists(program));
  EXPECT_EQ(host::getModuleDirectory() / "", program.parent_path() / "");
}

TEST(WindowsModuleLoader, BringsOneAgentOfEachModule) {
  const test::ProgramResult result = probe("load");
  EXPECT_EQ(result.output, "Software Inventory\nSoftware Update\n");
  EXPECT_THAT(result.errors, HasSubstr("SoftwareUpdate Agent DllMain(1)\n"));
  EXPECT_EQ(result.exitStatus, 0);
}

// Returns how often a part of a text stands in it.
int countOf(const std::string& part, const std::string& text) {
  int count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

TEST(WindowsModuleLoader, HasTheAccessToTheSystemReadyBeforeTheAgent) {
  const std::string log = probe("load").errors;
  const std::size_t registry = log.find("New singleton instance for WindowsRegistry\n");
  const std::size_t locker = log.find("New singleton instance for OSLocker\n");
  const std::size_t agent = log.find("SoftwareUpdate Agent DllMain(1)\n");

  ASSERT_NE(agent, std::string::npos);
  EXPECT_LT(registry, locker);
  EXPECT_LT(locker, agent);
}

TEST(WindowsModuleLoader, HasTheAgentLogThreadsThatComeAndGoAndDoNothingElse) {
  const test::ProgramResult without = probe("load");
  const test::ProgramResult with = probe("thread");

  EXPECT_EQ(with.output, "Software Inventory\nSoftware Update\n");
  for (const char* record :
       {"SoftwareUpdate Agent DllMain(2)\n", "SoftwareUpdate Agent DllMain(3)\n"}) {
    EXPECT_EQ(countOf(record, with.errors), countOf(record, without.errors) + 1) << record;
  }
  EXPECT_EQ(countOf("Registering Software Update agent...\n", with.errors), 1);
  EXPECT_EQ(with.exitStatus, 0);
}

TEST(WindowsModuleLoader, RefusesToLoadThemTwice) {
  const test::ProgramResult result = probe("load-twice");
  EXPECT_THAT(result.output, test::MatchesRegex("The module '.*OrvexSoftwareInventoryAgent.dll' "
                                                "was loaded but registered no agent[^\n]*\n"
                                                "Software Inventory\nSoftware Update\n"));
  EXPECT_EQ(result.exitStatus, 0);
}

TEST(WindowsModuleLoader, LeavesModulesThatUnloadInReverseOrder) {
  const test::ProgramResult result = probe("unload");
  EXPECT_EQ(result.output,
            "Orvex_SoftwareInstallationService: 1\n"
            "Orvex_RegisteredProfile: 2\n"
            "a flash lock\n"
            "OrvexSoftwareUpdateAgent.dll is unloaded\n"
            "no flash lock\n"
            "OrvexSoftwareInventoryAgent.dll is unloaded\n");
  EXPECT_THAT(result.errors, HasSubstr("SoftwareUpdate Agent DllMain(0)\n"));
  EXPECT_EQ(result.exitStatus, 0);
}

}  // namespace
