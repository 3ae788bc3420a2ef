#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <gmock/gmock.h>
#include <vector>
#include <windows.h>

#include "cli/ConsoleText.h"
#include "cli/Interrupt.h"
#include "tests/cli/EndedBySignal.h"
#include "tests/support/Windows/ImportPatch.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kProgram = "quorvel_cli_test.exe";

// The console of these tests: its code page, 0 for none, and those that it was given.
UINT s_codePage = 0;
std::vector<UINT> s_given;
PHANDLER_ROUTINE s_handler = nullptr;

UINT WINAPI getCodePage() {
  return s_codePage;
}

BOOL WINAPI setCodePage(UINT codePage) {
  s_given.push_back(codePage);
  s_codePage = codePage;
  return TRUE;
}

BOOL WINAPI printCodePage(UINT codePage) {
  std::fprintf(stderr, "code page %u\n", codePage);
  return TRUE;
}

BOOL WINAPI setHandler(PHANDLER_ROUTINE handler, BOOL isAdded) {
  s_handler = isAdded != FALSE ? handler : nullptr;
  return TRUE;
}

class ConsoleText : public testing::Test {
 protected:
  explicit ConsoleText(UINT codePage = 437) {
    s_codePage = codePage;
    s_given.clear();
    s_handler = nullptr;
  }

 private:
  test::ImportPatch m_get{kProgram, "GetConsoleOutputCP", &getCodePage};
  test::ImportPatch m_set{kProgram, "SetConsoleOutputCP", &setCodePage};
  test::ImportPatch m_handle{kProgram, "SetConsoleCtrlHandler", &setHandler};
};

TEST_F(ConsoleText, IsInTheCodePageOfTheProgramsTextsMeanwhile) {
  {
    const cli::ConsoleText text;
    EXPECT_THAT(s_given, ElementsAre(GetACP()));
  }
  EXPECT_THAT(s_given, ElementsAre(GetACP(), 437U));
  EXPECT_EQ(s_handler, nullptr);
}

TEST_F(ConsoleText, IsGivenBackWhenAnInterruptEndsTheProgram) {
  const cli::ConsoleText text;
  ASSERT_NE(s_handler, nullptr);
  EXPECT_EQ(s_handler(CTRL_C_EVENT), FALSE);
  EXPECT_THAT(s_given, ElementsAre(GetACP(), 437U));
}

TEST_F(ConsoleText, StaysWhereAnInterruptIsHeldOff) {
  const cli::ConsoleText text;
  {
    const cli::InterruptGuard guard;
    for (const DWORD event : {CTRL_C_EVENT, CTRL_BREAK_EVENT}) {
      EXPECT_EQ(s_handler(event), FALSE);
      EXPECT_THAT(s_given, ElementsAre(GetACP()));
    }
  }
  EXPECT_EQ(s_handler(CTRL_C_EVENT), FALSE);
  EXPECT_THAT(s_given, ElementsAre(GetACP(), 437U));
}

TEST_F(ConsoleText, IsGivenBackWhenTheConsoleEnds) {
  const cli::ConsoleText text;
  const cli::InterruptGuard guard;
  EXPECT_EQ(s_handler(CTRL_CLOSE_EVENT), FALSE);
  EXPECT_THAT(s_given, ElementsAre(GetACP(), 437U));
}

using ConsoleTextDeathTest = ConsoleText;

TEST_F(ConsoleTextDeathTest, IsGivenBackBeforeTheProgramEndsItselfForASignal) {
  EXPECT_EXIT(
      {
        const test::ImportPatch print(kProgram, "SetConsoleOutputCP", &printCodePage);
        const cli::ConsoleText text;
        cli::InterruptGuard guard;
        std::raise(SIGINT);
        std::fputs("to end\n", stderr);
        guard.yieldToInterrupt();
        std::exit(0);
      },
      test::EndedBySignal(SIGINT), "to end\r?\ncode page 437");
}

TEST_F(ConsoleText, IsGivenBackOnce) {
  {
    const cli::ConsoleText text;
    cli::giveConsoleBack();
    cli::giveConsoleBack();
  }
  EXPECT_THAT(s_given, ElementsAre(GetACP(), 437U));
}

TEST_F(ConsoleText, StaysWhereItIsInThatCodePage) {
  s_codePage = GetACP();
  { const cli::ConsoleText text; }
  EXPECT_THAT(s_given, IsEmpty());
}

TEST_F(ConsoleText, IsNoneWithoutAConsole) {
  s_codePage = 0;
  { const cli::ConsoleText text; }
  EXPECT_THAT(s_given, IsEmpty());
}

}  // namespace
