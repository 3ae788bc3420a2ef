// A host that loads the agents into a process with the core library alone, uses them, and lets them
// go again.

#include <gmock/gmock.h>
#include <string>

#include "tests/modules/Firmware.h"
#include "tests/modules/ModuleHost.h"
#include "tests/support/Programs.h"

namespace {

using test::Bytes;
using test::firmware;
using testing::HasSubstr;

const std::string kStarted =
    "at the start: OrvexCimCore\n"
    "with the agents: OrvexCimCore OrvexMidApi OrvexSoftwareInventoryAgent "
    "OrvexSoftwareUpdateAgent\n"
    "InstallFromURI: 4096\n";

class Unload : public testing::Test {
 protected:
  test::ProgramResult update(const std::string& task, const std::string& fields = "") const {
    m_files.makeAdapter(test::kAdapter, m_old, fields);
    return test::runProgram(test::programBeside("update_probe"),
                            {task, QUORVEL_TEST_MODULE_DIR, m_files.makeImage(m_new)},
                            {{"ZOLAN_Quorvel_LOG_LEVEL", "3"}});
  }
  [[nodiscard]] Bytes flash() const { return m_files.flash(test::kAdapter); }

  const Bytes m_old = firmware(1);
  const Bytes m_new = firmware(2);
  test::ModuleHost m_files;
};

TEST_F(Unload, IsCleanAfterAnUpdate) {
  const test::ProgramResult result = update("unload");

  EXPECT_EQ(result.output, kStarted + "state 7, error ''\nat the end: OrvexCimCore\n");
  EXPECT_THAT(result.errors, HasSubstr("SoftwareUpdate Agent DllMain(0)\n"));
  EXPECT_EQ(result.exitStatus, 0);
  EXPECT_EQ(flash(), m_new);
}

TEST_F(Unload, IsPutOffWhileAnUpdateRuns) {
  const test::ProgramResult result = update("unload-running", "\"writeRate\": 16384");

  EXPECT_EQ(result.output, kStarted + "at the end: OrvexCimCore\n");
  EXPECT_THAT(result.errors, HasSubstr(" finishing\n"));
  EXPECT_EQ(result.exitStatus, 0);
  EXPECT_EQ(flash(), m_new);
}

TEST_F(Unload, ByTheEndOfTheProcessDoesNotWaitForAnUpdate) {
  const test::ProgramResult result =
      update("exit-running", "\"faults\": {\"hang\": {\"atPercent\": 30}}");

  EXPECT_EQ(result.output, kStarted);
  EXPECT_EQ(result.exitStatus, 0);
  EXPECT_EQ(flash(), m_old);
}

TEST_F(Unload, IsCleanAfterAnUpdateThatHadNoFlashLock) {
  const test::ProgramResult result = update("no-lock");

  EXPECT_EQ(result.output, kStarted + "state 10, error 'Timeout Error'\n");
  EXPECT_THAT(result.errors,
              HasSubstr(": error: The flash lock cannot be had, and no update can be made: "));
  EXPECT_THAT(
      result.errors,
      HasSubstr("\nOrvexQuorvel: no update can be made, since the flash lock cannot be had: "));
  EXPECT_EQ(result.exitStatus, 0);
  EXPECT_EQ(flash(), m_old);
}

TEST_F(Unload, OfTheCoreLeavesNothingOfTheSystems) {
  m_files.makeAdapter(test::kAdapter, m_old);
  const test::ProgramResult result =
      test::runProgram(test::programBeside("handles_probe"),
                       {m_files.makeImage(m_new), "handles_module.dll",
                        "OrvexSoftwareInventoryAgent.dll", "OrvexSoftwareUpdateAgent.dll"});
  EXPECT_EQ(result.exitStatus, 0) << result.output << result.errors;
  EXPECT_THAT(result.output, HasSubstr("after the last: "));
  EXPECT_EQ(flash(), m_new);
}

}  // namespace
