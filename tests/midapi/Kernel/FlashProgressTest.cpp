#include <gtest/gtest.h>
#include <string>
#include <utility>

#include "midapi/Kernel/FlashProgress.h"

namespace {

using ma::DevlinkFlashEvent;

DevlinkFlashEvent status(std::string component, std::uint64_t done, std::uint64_t total) {
  DevlinkFlashEvent event;
  event.component = std::move(component);
  event.done = done;
  event.total = total;
  return event;
}

TEST(FlashProgress, CountsBytesOverAllComponents) {
  ma::FlashProgress progress(300);
  EXPECT_EQ(progress.done(), 0U);
  EXPECT_EQ(progress.total(), 300U);
  progress.note(status("fw.undi", 0, 200));
  progress.note(status("fw.undi", 100, 200));
  EXPECT_EQ(progress.done(), 100U);
  progress.note(status("fw.undi", 200, 200));
  progress.note(status("fw.mgmt", 0, 100));
  EXPECT_EQ(progress.done(), 200U);
  progress.note(status("fw.mgmt", 100, 100));
  EXPECT_EQ(progress.done(), 300U);
  EXPECT_EQ(progress.total(), 300U);
}

TEST(FlashProgress, DoesNotFallByWhatIsNoProgress) {
  ma::FlashProgress progress(200);
  progress.note(status("fw.undi", 150, 200));
  progress.note(status("", 0, 0));
  progress.note(status("fw.undi", 0, 0));
  progress.note(status("fw.undi", 120, 200));
  DevlinkFlashEvent end = status("fw.undi", 0, 200);
  end.kind = DevlinkFlashEvent::Kind::End;
  progress.note(end);
  EXPECT_EQ(progress.done(), 150U);
}

TEST(FlashProgress, CountsAComponentThatEndedWithoutAWord) {
  ma::FlashProgress progress(300);
  progress.note(status("fw.undi", 190, 200));
  progress.note(status("fw.mgmt", 10, 100));
  EXPECT_EQ(progress.done(), 210U);
}

TEST(FlashProgress, TellsComponentsWithoutNamesApartByTheirEnds) {
  ma::FlashProgress progress(300);
  progress.note(status("", 200, 200));
  progress.note(status("", 0, 100));
  progress.note(status("", 50, 100));
  EXPECT_EQ(progress.done(), 250U);
}

TEST(FlashProgress, FollowsADriverThatWritesMoreThanTheFileSays) {
  ma::FlashProgress progress(100);
  progress.note(status("fw.undi", 50, 400));
  EXPECT_EQ(progress.done(), 50U);
  EXPECT_EQ(progress.total(), 400U);
  progress.note(status("fw.undi", 500, 400));
  EXPECT_EQ(progress.done(), 400U);
}

TEST(FlashProgress, DoesNotFallWithATotalThatShrinks) {
  ma::FlashProgress progress(0);
  progress.note(status("fw.undi", 80, 100));
  progress.note(status("fw.undi", 10, 50));
  EXPECT_EQ(progress.done(), 80U);
  EXPECT_EQ(progress.total(), 80U);
  progress.note(status("fw.mgmt", 0, 50));
  EXPECT_EQ(progress.done(), 80U);
  EXPECT_EQ(progress.total(), 130U);
}

TEST(FlashProgress, PassesOverNonsense) {
  ma::FlashProgress progress(100);
  progress.note(status("fw.undi", 50, UINT64_MAX));
  EXPECT_EQ(progress.done(), 0U);
  EXPECT_EQ(progress.total(), 100U);
}

}  // namespace
