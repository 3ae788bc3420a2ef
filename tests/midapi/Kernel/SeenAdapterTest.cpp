#include <gtest/gtest.h>
#include <string>

#include "midapi/Kernel/SeenAdapter.h"

namespace {

using ma::AdapterAddress;
using ma::findChange;
using ma::SeenAdapter;
using ma::SeenAdapters;

constexpr AdapterAddress kAdapter{0, 3, 0};

SeenAdapter card() {
  return {{0x8086, 0x1592, 0x8086, 2},
          "ice",
          {{"the serial number", "A1"}},
          {{"fw.undi", "1.0"}, {"fw.mgmt", ""}},
          {{{"image 1", "UEFI 1.0"}}}};
}

TEST(SeenAdapter, IsTheSameWhereNothingHasChanged) {
  EXPECT_EQ(findChange(card(), card()), "");
}

TEST(SeenAdapter, SaysWhatHasChanged) {
  SeenAdapter now = card();
  now.ids.subsystemDevice = 3;
  EXPECT_EQ(findChange(card(), now),
            "its device was 8086:1592 sub 8086:0002, and is 8086:1592 sub 8086:0003 now");
  now = card();
  now.driver = "";
  EXPECT_EQ(findChange(card(), now), "its driver was ice, and is (none) now");
  now = card();
  now.serialNumbers.clear();
  EXPECT_EQ(findChange(card(), now), "the serial number was A1, and is (none) now");
  now = card();
  now.versions[1].value = "7.0";
  EXPECT_EQ(findChange(card(), now), "fw.mgmt was (none), and is 7.0 now");
  now = card();
  now.images->push_back({"image 2", "PXE 1.0"});
  EXPECT_EQ(findChange(card(), now), "image 2 was (none), and is PXE 1.0 now");
}

TEST(SeenAdapter, IsNotComparedInWhatTheCheckDidNotSee) {
  SeenAdapter seen = card();
  seen.serialNumbers.clear();
  seen.versions.clear();
  seen.images.reset();
  EXPECT_EQ(findChange(seen, card()), "");
  SeenAdapter unread = card();
  unread.images.reset();
  EXPECT_EQ(findChange(card(), unread), "");
}

TEST(SeenAdapters, KeepTheLastCheckOfAFile) {
  SeenAdapters seen;
  EXPECT_FALSE(seen.find(kAdapter, 1));
  seen.note(kAdapter, 1, card());
  SeenAdapter later = card();
  later.driver = "other";
  seen.note(kAdapter, 1, later);
  EXPECT_EQ(seen.find(kAdapter, 1).value().driver, "other");
  EXPECT_FALSE(seen.find(kAdapter, 2));
  EXPECT_FALSE(seen.find({0, 4, 0}, 1));
}

TEST(SeenAdapters, ForgetTheOldestOfManyFiles) {
  SeenAdapters seen;
  for (std::uint64_t file = 0; file <= SeenAdapters::kMostFiles; ++file) {
    seen.note(kAdapter, file, card());
  }
  EXPECT_FALSE(seen.find(kAdapter, 0));
  EXPECT_TRUE(seen.find(kAdapter, 1));
}

}  // namespace
