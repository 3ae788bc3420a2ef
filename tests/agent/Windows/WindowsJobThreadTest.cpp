// What a job's thread asks of the system while it updates.

#include "tests/agent/ConcreteJobFixture.h"
#include "tests/support/Windows/ExecutionStates.h"

namespace {

using testing::ElementsAre;

using WindowsJobThread = test::ConcreteJobFixture;

TEST_F(WindowsJobThread, KeepsTheMachineAwakeFromItsFirstWriteToItsLast) {
  constexpr EXECUTION_STATE kAwake = ES_CONTINUOUS | ES_SYSTEM_REQUIRED;
  const test::ExecutionStates states("agent_test.exe");
  startAndHold();
  EXPECT_THAT(states.all(), ElementsAre(kAwake));
  finish();
  EXPECT_THAT(states.all(), ElementsAre(kAwake, ES_CONTINUOUS));
  EXPECT_THAT(m_midApi.calls(), testing::Contains(testing::StartsWith("updateCapabilityWord")));
}

}  // namespace
