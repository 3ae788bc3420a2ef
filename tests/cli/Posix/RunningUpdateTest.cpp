// `quorvel update` as it is watched, interrupted and abandoned while it runs.

#include <chrono>
#include <csignal>
#include <nlohmann/json.hpp>
#include <optional>
#include <unistd.h>

#include "tests/cli/Posix/OtherUpdater.h"
#include "tests/cli/Posix/RunningQuorvel.h"
#include "tests/support/QuorvelFixture.h"
#include "tests/support/Regex.h"
#include "tests/support/WaitUntil.h"

namespace {

using test::ContainsRegex;
using test::MatchesRegex;
using test::OtherUpdater;
using test::OutputTo;
using test::ProgramResult;
using test::RunningQuorvel;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kAdapter = "0000:03:00";
constexpr const char* kPort = "0000:03:00.0";
constexpr const char* kInterrupted =
    "quorvel: interrupted: the flash is being written and cannot be left half done; waiting for "
    "its end\n";

// Once the flash is being written: the first line may stand before it is had.
constexpr const char* kSecondLine = "\nupdating";

class RunningUpdateTest : public test::QuorvelFixture {};

TEST_F(RunningUpdateTest, RewritesOneLineOnATerminal) {
  RunningQuorvel quorvel({"update", kPort, addSlowAdapter(kAdapter)}, OutputTo::Terminal,
                         environment());
  const ProgramResult result = quorvel.finish();
  EXPECT_EQ(result.exitStatus, 0) << result.errors;
  // The terminal puts a carriage return in front of each line's end.
  EXPECT_THAT(result.output,
              MatchesRegex("(\rupdating 0000:03:00.0  \\[#*\\.*\\]  [ 0-9]{3} %  00:0[0-9])+\r\n"
                           "Completed: 0000:03:00.0 is updated \\(00:0[0-9]\\)\r\n"));
  EXPECT_THAT(result.output, ContainsRegex("\\[#+\\.+\\]   [1-9][0-9] %  00:0"));
}

TEST_F(RunningUpdateTest, WaitsForTheFlashWhenItIsInterrupted) {
  const std::string rom = addSlowAdapter(kAdapter);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    RunningQuorvel quorvel({"update", kPort, rom}, OutputTo::Pipe, environment());
    ASSERT_TRUE(quorvel.awaitOutput(kSecondLine));
    quorvel.signal(signal);
    ASSERT_TRUE(quorvel.awaitErrors(kInterrupted)) << signal;
    const ProgramResult result = quorvel.finish();
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.errors, kInterrupted);
    EXPECT_THAT(result.output, HasSubstr("Completed: "));
    EXPECT_EQ(flash(), test::readBytes(rom));
  }
}

TEST_F(RunningUpdateTest, EndsWithoutAWriteWhenItIsInterruptedWhileItWaitsForTheFlash) {
  addPxeAdapter(kAdapter);
  const test::Bytes old = flash();
  const std::string rom = writeRom("new.rom", {pxe(3)});
  std::optional<OtherUpdater> other(std::in_place);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    RunningQuorvel quorvel({"update", kPort, rom}, OutputTo::Pipe, environment());
    ASSERT_TRUE(quorvel.awaitOutput("waiting for the flash: quorvel_program_test")) << signal;
    quorvel.signal(signal);
    const ProgramResult result = quorvel.finish();
    EXPECT_EQ(result.exitStatus, 128 + signal);
    EXPECT_EQ(result.errors,
              "quorvel: interrupted before the flash could be had: nothing was written\n");
  }
  other.reset();
  EXPECT_EQ(flash(), old);
  EXPECT_EQ(run({"update", kPort, rom}).exitStatus, 0);
  EXPECT_EQ(flash(), test::readBytes(rom));
}

// What it says must not get into a file that it opens.
TEST_F(RunningUpdateTest, OpensNoFileInThePlaceOfAStreamThatIsMissing) {
  addPxeAdapter(kAdapter);
  const std::string rom = writeRom("new.rom", {pxe(3)});
  const OtherUpdater other;
  const RunningQuorvel quorvel({"update", kPort, rom}, OutputTo::Nowhere, environment());
  EXPECT_TRUE(
      test::waitUntil([&quorvel] { return quorvel.openFile(STDOUT_FILENO) == "/dev/null"; }));
}

TEST_F(RunningUpdateTest, GoesOnWaitingForTheFlashWhenItIsToStop) {
  addPxeAdapter(kAdapter);
  const std::string rom = writeRom("new.rom", {pxe(3)});
  std::optional<OtherUpdater> other(std::in_place);
  RunningQuorvel quorvel({"update", kPort, rom}, OutputTo::Pipe, environment());
  ASSERT_TRUE(quorvel.awaitOutput("waiting for the flash: quorvel_program_test"));
  quorvel.signal(SIGTSTP);
  EXPECT_TRUE(
      quorvel.awaitErrors("quorvel: the stop is refused: a program that waits for the flash "
                          "could be given it while it is stopped, and would keep it from "
                          "all others\n"));
  other.reset();
  EXPECT_EQ(quorvel.finish().exitStatus, 0);
  EXPECT_EQ(flash(), test::readBytes(rom));
}

TEST_F(RunningUpdateTest, WaitsForTheFlashAsLongAsItIsTold) {
  addPxeAdapter(kAdapter);
  const test::Bytes old = flash();
  const std::string rom = writeRom("new.rom", {pxe(3)});
  std::optional<OtherUpdater> other(std::in_place);
  for (const char* time : {"0", "50ms"}) {
    const ProgramResult result = run({"update", kPort, rom, "--lock-timeout", time});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(
        result.errors,
        AllOf(HasSubstr("Timeout Error (the flash was held by quorvel_program_test, process "),
              HasSubstr("or --lock-timeout")));
  }
  other.reset();
  EXPECT_EQ(flash(), old);
  EXPECT_EQ(run({"update", kPort, rom, "--lock-timeout", "0"}).exitStatus, 0);
}

TEST_F(RunningUpdateTest, PrintsTheOutcomeOfAnInterruptedFlashThatFails) {
  const std::string rom = addSlowAdapter(kAdapter);
  describe("0000-03-00",
           {{"faults", {{"write", {{"atPercent", 90}, {"code", 17}, {"text", "Stuck"}}}}}});
  RunningQuorvel quorvel({"update", kPort, rom}, OutputTo::Pipe, environment());
  ASSERT_TRUE(quorvel.awaitOutput(kSecondLine));
  quorvel.signal(SIGINT);
  const ProgramResult result = quorvel.finish();
  EXPECT_EQ(result.exitStatus, 1);
  EXPECT_THAT(result.errors,
              AllOf(StartsWith(kInterrupted), HasSubstr("failed: Exception, error 17: Stuck")));
}

TEST_F(RunningUpdateTest, FinishesTheFlashWhenNobodyReadsItsOutput) {
  const std::string rom = addSlowAdapter(kAdapter);
  RunningQuorvel quorvel({"update", kPort, rom}, OutputTo::Pipe, environment());
  ASSERT_TRUE(quorvel.awaitOutput("updating"));
  quorvel.abandonOutput();
  const ProgramResult result = quorvel.finish();
  EXPECT_EQ(result.exitStatus, 1);
  EXPECT_EQ(result.errors, "quorvel: the output could not be written completely\n");
  EXPECT_EQ(flash(), test::readBytes(rom));
}

}  // namespace
