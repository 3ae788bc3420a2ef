#include <filesystem>
#include <gmock/gmock.h>
#include <string>

#include "Utils/Exception.h"
#include "host/ModuleLoader.h"
#include "tests/support/Programs.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Throws.h"

namespace {

namespace fs = std::filesystem;

using test::ThrowsExactly;
using testing::HasSubstr;
using testing::StartsWith;

// Runs the probe, since the modules that a process loads stay.
test::ProgramResult probe(const std::string& task) {
  return test::runProgram(test::programBeside("module_probe"), {task, QUORVEL_TEST_MODULE_DIR});
}

TEST(WindowsModuleLoader, NamesALibraryThatIsNotThere) {
  const test::TempDirectory directory;
  const std::string path = (directory.path() / "Missing.dll").string();
  const std::string start = "Could not load the library '" + path + "': ";
  EXPECT_THAT([&path] { host::loadModule(path); },
              ThrowsExactly<utils::Exception>(
                  testing::AllOf(StartsWith(start), testing::SizeIs(testing::Gt(start.size())))));
}

TEST(WindowsModuleLoader, FindsTheModulesBesideTheProgram) {
  const fs::path program = test::programBeside("host_test");
  ASSERT_TRUE(fs::exists(program));
  EXPECT_EQ(fs::path(host::getModuleDirectory()) / "", program.parent_path() / "");
}

TEST(WindowsModuleLoader, BringsOneAgentOfEachModule) {
  const test::ProgramResult result = probe("load");
  EXPECT_EQ(result.output, "Software Inventory\nSoftware Update\n");
  EXPECT_THAT(result.errors, HasSubstr("SoftwareUpdate Agent DllMain(1)\n"));
  EXPECT_EQ(result.exitStatus, 0);
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
            "OrvexSoftwareUpdateAgent.dll is unloaded\n"
            "OrvexSoftwareInventoryAgent.dll is unloaded\n");
  EXPECT_THAT(result.errors, HasSubstr("SoftwareUpdate Agent DllMain(0)\n"));
  EXPECT_EQ(result.exitStatus, 0);
}

}  // namespace
