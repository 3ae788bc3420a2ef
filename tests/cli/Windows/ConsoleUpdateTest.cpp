// `quorvel update` at a console, interrupted while it runs.

#include <csignal>
#include <gmock/gmock.h>
#include <system_error>
#include <windows.h>

#include "platform/Windows/Handle.h"
#include "tests/cli/EndedBySignal.h"
#include "tests/cli/Windows/ConsoleProgram.h"
#include "tests/support/QuorvelFixture.h"
#include "tests/support/Windows/ImportPatch.h"
#include "tests/support/Windows/OtherProgram.h"

namespace {

using test::ConsoleProgram;
using test::ProgramResult;

constexpr const char* kTest = "quorvel_program_test.exe";
constexpr UINT kUtf8 = 65001;
constexpr const char* kPort = "0000:03:00.0";

class ConsoleUpdate : public test::QuorvelFixture {};

TEST_F(ConsoleUpdate, EndsWithoutAWriteWhenItIsInterruptedWhileItWaitsForTheFlash) {
  addPxeAdapter("0000:03:00");
  const test::Bytes old = flash();
  const std::string rom = writeRom("new.rom", {pxe(3)});
  const platform::Handle semaphore(CreateSemaphoreA(nullptr, 1, 1, "Global\\RavlApplySemaphore"));
  test::OtherProgram other;
  ASSERT_TRUE(other.lock());
  {
    ConsoleProgram quorvel({"update", kPort, rom}, environment());
    ASSERT_TRUE(quorvel.awaitOutput("waiting for the flash: another program"));
    EXPECT_EQ(GetConsoleOutputCP(), kUtf8);
    quorvel.interrupt();
    const ProgramResult result = quorvel.finish();
    EXPECT_TRUE(test::EndedBySignal(SIGINT)(result.exitStatus)) << result.exitStatus;
    EXPECT_EQ(result.errors,
              "quorvel: interrupted before the flash could be had: nothing was written\n");
    EXPECT_EQ(GetConsoleOutputCP(), GetOEMCP());
  }
  other.unlock();
  EXPECT_EQ(flash(), old);
  EXPECT_EQ(run({"update", kPort, rom}).exitStatus, 0);
  EXPECT_EQ(flash(), test::readBytes(rom));
}

HANDLE s_program = nullptr;

BOOL WINAPI noteProgram(DWORD process) {
  s_program = OpenProcess(SYNCHRONIZE, FALSE, process);
  return TRUE;
}

BOOL WINAPI refuseHandler(PHANDLER_ROUTINE /*handler*/, BOOL /*isAdded*/) {
  SetLastError(ERROR_NOT_ENOUGH_MEMORY);
  return FALSE;
}

TEST_F(ConsoleUpdate, IsNotLeftBehindByATestThatCannotWatchIt) {
  addPxeAdapter("0000:03:00");
  const std::string rom = writeRom("new.rom", {pxe(3)});
  const platform::Handle semaphore(CreateSemaphoreA(nullptr, 1, 1, "Global\\RavlApplySemaphore"));
  test::OtherProgram other;  // has the flash, which the update waits for
  ASSERT_TRUE(other.lock());
  {
    const test::ImportPatch attach(kTest, "AttachConsole", &noteProgram);
    const test::ImportPatch handle(kTest, "SetConsoleCtrlHandler", &refuseHandler);
    EXPECT_THROW(ConsoleProgram({"update", kPort, rom}, environment()), std::system_error);
  }
  const platform::Handle program(s_program);
  ASSERT_TRUE(program.isOpen());
  EXPECT_EQ(WaitForSingleObject(program.get(), 0), WAIT_OBJECT_0);
  other.unlock();
}

TEST_F(ConsoleUpdate, WaitsForTheFlashThatIsBeingWrittenWhenItIsInterrupted) {
  const std::string rom = addSlowAdapter("0000:03:00");
  ConsoleProgram quorvel({"update", kPort, rom}, environment());
  ASSERT_TRUE(quorvel.awaitOutput("\nupdating"));
  quorvel.interrupt();
  const ProgramResult result = quorvel.finish();
  EXPECT_EQ(result.exitStatus, 0);
  EXPECT_EQ(result.errors,
            "quorvel: interrupted: the flash is being written and cannot be left half done; "
            "waiting for its end\n");
  EXPECT_EQ(flash(), test::readBytes(rom));
  EXPECT_EQ(GetConsoleOutputCP(), GetOEMCP());
}

}  // namespace
