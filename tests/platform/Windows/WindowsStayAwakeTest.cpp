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

TEST(WindowsStayAwake, LeavesWhatWasAskedForBefore) {
  constexpr EXECUTION_STATE kDisplay = ES_CONTINUOUS | ES_DISPLAY_REQUIRED;
  const EXECUTION_STATE before = SetThreadExecutionState(kDisplay);
  { const platform::StayAwake awake; }
  EXPECT_EQ(SetThreadExecutionState(ES_CONTINUOUS | before), kDisplay);
}

}  // namespace
