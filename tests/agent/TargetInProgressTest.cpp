#include <gmock/gmock.h>
#include <utility>

#include "agent/TargetInProgress.h"

namespace {

class TargetInProgressTest : public testing::Test {
 protected:
  ~TargetInProgressTest() override { TargetInProgress::clear(); }
};

TEST_F(TargetInProgressTest, IsEmptyWhenThereIsNone) {
  EXPECT_EQ(TargetInProgress::get(), "");
}

TEST_F(TargetInProgressTest, IsWhatWasSetLast) {
  TargetInProgress::set("a");
  TargetInProgress::set("b");
  EXPECT_EQ(TargetInProgress::get(), "b");
}

TEST_F(TargetInProgressTest, ReservationHoldsTheNameForItsLife) {
  {
    const TargetReservation reservation("a");
    EXPECT_EQ(TargetInProgress::get(), "a");
  }
  EXPECT_EQ(TargetInProgress::get(), "");
}

TEST_F(TargetInProgressTest, EmptyReservationLeavesTheNameAlone) {
  TargetInProgress::set("a");
  {
    TargetReservation reservation;
    reservation.release();
  }
  EXPECT_EQ(TargetInProgress::get(), "a");
}

TEST_F(TargetInProgressTest, ReservationClearsTheNameOnce) {
  {
    TargetReservation reservation("a");
    reservation.release();
    TargetInProgress::set("b");
  }
  EXPECT_EQ(TargetInProgress::get(), "b");
}

TEST_F(TargetInProgressTest, MovedReservationIsHeldByTheOther) {
  TargetReservation first("a");
  {
    TargetReservation second(std::move(first));
    EXPECT_EQ(TargetInProgress::get(), "a");
    TargetReservation third;
    third = std::move(second);
    EXPECT_EQ(TargetInProgress::get(), "a");
  }
  EXPECT_EQ(TargetInProgress::get(), "");
}

TEST_F(TargetInProgressTest, AbandonedReservationLeavesTheNameSet) {
  {
    TargetReservation reservation("a");
    reservation.abandon();
  }
  EXPECT_EQ(TargetInProgress::get(), "a");
}

}  // namespace
