#include <gmock/gmock.h>
#include <utility>

#include "agent/TargetInProgress.h"

namespace {

class TargetInProgressTest : public testing::Test {
 protected:
  ~TargetInProgressTest() override { agent::clearTargetInProgress(); }
};

TEST_F(TargetInProgressTest, IsEmptyWhenThereIsNone) {
  EXPECT_EQ(agent::getTargetInProgress(), "");
}

TEST_F(TargetInProgressTest, IsWhatWasSetLast) {
  agent::setTargetInProgress("a");
  agent::setTargetInProgress("b");
  EXPECT_EQ(agent::getTargetInProgress(), "b");
}

TEST_F(TargetInProgressTest, ReservationHoldsTheNameForItsLife) {
  {
    const agent::TargetReservation reservation("a");
    EXPECT_EQ(agent::getTargetInProgress(), "a");
  }
  EXPECT_EQ(agent::getTargetInProgress(), "");
}

TEST_F(TargetInProgressTest, EmptyReservationLeavesTheNameAlone) {
  agent::setTargetInProgress("a");
  {
    agent::TargetReservation reservation;
    reservation.release();
  }
  EXPECT_EQ(agent::getTargetInProgress(), "a");
}

TEST_F(TargetInProgressTest, ReservationClearsTheNameOnce) {
  {
    agent::TargetReservation reservation("a");
    reservation.release();
    agent::setTargetInProgress("b");
  }
  EXPECT_EQ(agent::getTargetInProgress(), "b");
}

TEST_F(TargetInProgressTest, MovedReservationIsHeldByTheOther) {
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

TEST_F(TargetInProgressTest, AbandonedReservationLeavesTheNameSet) {
  {
    agent::TargetReservation reservation("a");
    reservation.abandon();
  }
  EXPECT_EQ(agent::getTargetInProgress(), "a");
}

}  // namespace
