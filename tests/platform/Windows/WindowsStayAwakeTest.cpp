#include <gmock/gmock.h>

#include "platform/StayAwake.h"
#include "tests/support/Windows/ExecutionStates.h"

namespace {

using testing::ElementsAre;

TEST(WindowsStayAwake, IsAskedOfTheSystemAndTakenBack) {
  constexpr EXECUTION_STATE kAwake = ES_CONTINUOUS | ES_SYSTEM_REQUIRED;
  const test::ExecutionStates states("platform_tests.exe");
  {
    const platform::StayAwake awake;
    EXPECT_THAT(states.all(), ElementsAre(kAwake));
  }
  EXPECT_THAT(states.all(), ElementsAre(kAwake, ES_CONTINUOUS));
}

TEST(WindowsStayAwake, TakesNothingBackThatTheSystemHasRefused) {
  static int s_calls = 0;
  const auto refuse = +[](EXECUTION_STATE) -> EXECUTION_STATE {
    ++s_calls;
    return 0;
  };
  const test::ImportPatch patch("platform_tests.exe", "SetThreadExecutionState", refuse);
  { const platform::StayAwake awake; }
  EXPECT_EQ(s_calls, 1);
}

TEST(WindowsStayAwake, LeavesWhatWasAskedForBefore) {
  constexpr EXECUTION_STATE kDisplay = ES_CONTINUOUS | ES_DISPLAY_REQUIRED;
  const EXECUTION_STATE before = SetThreadExecutionState(kDisplay);
  { const platform::StayAwake awake; }
  EXPECT_EQ(SetThreadExecutionState(ES_CONTINUOUS | before), kDisplay);
}

}  // namespace
