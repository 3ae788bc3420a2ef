#include <gtest/gtest.h>
#include <string>

#include "cim/JobState.h"

namespace {

using cim::JobState;

TEST(JobState, HasTheNameOfTheSchema) {
  EXPECT_EQ(cim::toText(JobState::New), "New");
  EXPECT_EQ(cim::toText(JobState{6}), "Shutting Down");
  EXPECT_EQ(cim::toText(JobState{12}), "Query Pending");
  EXPECT_EQ(cim::toText(JobState{13}), "13");
}

TEST(JobState, HasANameWhereverItHasANumber) {
  for (std::uint16_t state = 2; state <= 12; ++state) {
    EXPECT_NE(cim::toText(JobState{state}), std::to_string(state));
  }
}

TEST(JobState, EndsAJobInFourCases) {
  for (std::uint16_t state = 0; state < 20; ++state) {
    EXPECT_EQ(cim::hasEnded(JobState{state}), state >= 7 && state <= 10) << state;
  }
}

}  // namespace
