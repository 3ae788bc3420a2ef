#include <gtest/gtest.h>
#include <limits>
#include <thread>

#include "midapi/WriteProgress.h"

namespace {

using ma::WriteProgress;
using ma::WriteProgressTable;

TEST(WriteProgress, StandsAtNinetyNineUntilItIsCompleted) {
  WriteProgress progress;
  progress.advance(1, 3);
  EXPECT_EQ(progress.percent(), 33U);
  progress.advance(3, 3);
  EXPECT_EQ(progress.percent(), 99U);
  progress.complete();
  EXPECT_EQ(progress.percent(), 100U);
}

TEST(WriteProgress, NeverFalls) {
  WriteProgress progress;
  progress.advance(50, 100);
  progress.advance(20, 100);
  EXPECT_EQ(progress.percent(), 50U);
}

TEST(WriteProgress, CountsTheLargestImage) {
  WriteProgress progress;
  const std::uint64_t size = std::numeric_limits<std::uint32_t>::max();
  progress.advance(size / 2, size);
  EXPECT_EQ(progress.percent(), 49U);
}

TEST(WriteProgress, KeepsItsRemarkUntilTheNextWrite) {
  WriteProgressTable table;
  EXPECT_EQ(table.remark({0, 3, 0}), "");
  table.start({0, 3, 0}).remark("not compared");
  EXPECT_EQ(table.remark({0, 3, 0}), "not compared");
  EXPECT_EQ(table.remark({0, 4, 0}), "");
  static_cast<void>(table.start({0, 3, 0}));
  EXPECT_EQ(table.remark({0, 3, 0}), "");
}

TEST(WriteProgressTable, KeepsAdaptersApartAndStartsEachWriteAtZero) {
  WriteProgressTable table;
  EXPECT_EQ(table.percent({0, 3, 0}), 0U);
  table.start({0, 3, 0}).complete();
  table.start({0, 4, 0}).advance(1, 2);
  EXPECT_EQ(table.percent({0, 3, 0}), 100U);
  EXPECT_EQ(table.percent({0, 4, 0}), 50U);
  static_cast<void>(table.start({0, 3, 0}));
  EXPECT_EQ(table.percent({0, 3, 0}), 0U);
}

TEST(WriteProgressTable, IsWatchedByOneThreadWhileOthersWrite) {
  constexpr std::uint64_t kSteps = 2000;
  WriteProgressTable table;
  WriteProgress& watched = table.start({0, 3, 0});
  std::thread writer([&] {
    for (std::uint64_t step = 1; step <= kSteps; ++step) {
      watched.advance(step, kSteps);
    }
    watched.complete();
  });
  std::thread other([&] {
    for (std::uint8_t bus = 4; bus < 200; ++bus) {
      table.start({0, bus, 0}).complete();
    }
  });
  std::uint32_t last = 0;
  while (last < 100) {
    const std::uint32_t percent = table.percent({0, 3, 0});
    EXPECT_GE(percent, last);
    last = percent;
  }
  writer.join();
  other.join();
  EXPECT_EQ(table.percent({0, 199, 0}), 100U);
}

}  // namespace
