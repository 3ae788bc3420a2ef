#include <gmock/gmock.h>
#include <utility>

#include "agent/TargetInProgress.h"

namespace {

class TargetInProgressTest : public testing::Test {
 protected:
  ~TargetInProgressTest() override { target_in_progress::clear(); }
};

TEST_F(TargetInProgressTest, IsEmptyWhenThereIsNone) {
  EXPECT_EQ(target_in_progress::get(), "");
}

TEST_F(TargetInProgressTest, IsWhatWasSetLast) {
  target_in_progress::set("a");
  target_in_progress::set("b");
  EXPECT_EQ(target_in_progress::get(), "b");
}

TEST_F(TargetInProgressTest, ReservationHoldsTheNameForItsLife) {
  {
    const TargetReservation reservation("a");
    EXPECT_EQ(target_in_progress::get(), "a");
  }
  EXPECT_EQ(target_in_progress::get(), "");
}

TEST_F(TargetInProgressTest, EmptyReservationLeavesTheNameAlone) {
  target_in_progress::set("a");
  {
    TargetReservation reservation;
    reservation.release();
  }
  EXPECT_EQ(target_in_progress::get(), "a");
}

TEST_F(TargetInProgressTest, ReservationClearsTheNameOnce) {
  {
    TargetReservation reservation("a");
    reservation.release();
    target_in_progress::set("b");
  }
  EXPECT_EQ(target_in_progress::get(), "b");
}

TEST_F(TargetInProgressTest, MovedReservationIsHeldByTheOther) {
  TargetReservation first("a");
  {
    TargetReservation second(std::move(first));
    EXPECT_EQ(target_in_progress::get(), "a");
    TargetReservation third;
    third = std::move(second);
    EXPECT_EQ(target_in_progress::get(), "a");
  }
  EXPECT_EQ(target_in_progress::get(), "");
}

TEST_F(TargetInProgressTest, AbandonedReservationLeavesTheNameSet) {
  {
    TargetReservation reservation("a");
    reservation.abandon();
  }
  EXPECT_EQ(target_in_progress::get(), "a");
}

}  // namespace
