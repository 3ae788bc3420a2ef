#include <gmock/gmock.h>
#include <utility>

#include "agent/TargetInProgress.h"

namespace {

class TargetInProgress : public testing::Test {
 public:
  ~TargetInProgress() override { agent::clearTargetInProgress(); }
};

TEST_F(TargetInProgress, IsEmptyWhenThereIsNone) {
  EXPECT_EQ(agent::getTargetInProgress(), "");
}

TEST_F(TargetInProgress, IsWhatWasSetLast) {
  agent::setTargetInProgress("a");
  agent::setTargetInProgress("b");
  EXPECT_EQ(agent::getTargetInProgress(), "b");
}

TEST_F(TargetInProgress, ReservationHoldsTheNameForItsLife) {
  {
    const agent::TargetReservation reservation("a");
    EXPECT_EQ(agent::getTargetInProgress(), "a");
  }
  EXPECT_EQ(agent::getTargetInProgress(), "");
}

TEST_F(TargetInProgress, EmptyReservationLeavesTheNameAlone) {
  agent::setTargetInProgress("a");
  {
    agent::TargetReservation reservation;
    reservation.release();
  }
  EXPECT_EQ(agent::getTargetInProgress(), "a");
}

TEST_F(TargetInProgress, ReservationClearsTheNameOnce) {
  {
    agent::TargetReservation reservation("a");
    reservation.release();
    agent::setTargetInProgress("b");
  }
  EXPECT_EQ(agent::getTargetInProgress(), "b");
}

TEST_F(TargetInProgress, MovedReservationIsHeldByTheOther) {
  agent::TargetReservation first("a");
  {
    agent::TargetReservation second(std::move(first));
    EXPECT_EQ(agent::getTargetInProgress(), "a");
    agent::TargetReservation third;
    third = std::move(second);
    EXPECT_EQ(agent::getTargetInProgress(), "a");
  }
  EXPECT_EQ(agent::getTargetInProgress(), "");
}

TEST_F(TargetInProgress, AbandonedReservationLeavesTheNameSet) {
  {
    agent::TargetReservation reservation("a");
    reservation.abandon();
  }
  EXPECT_EQ(agent::getTargetInProgress(), "a");
}

}  // namespace
