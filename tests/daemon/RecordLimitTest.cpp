#include <gmock/gmock.h>
#include <string>

#include "daemon/RecordLimit.h"

namespace {

using Limit = quorveld::RecordLimit<std::string>;
using testing::IsEmpty;
using testing::SizeIs;

constexpr unsigned kMost = 3;

class RecordLimit : public testing::Test {
 protected:
  // Offers that many records of a kind. Returns how many pass.
  unsigned offer(const std::string& kind, unsigned count) {
    unsigned passed = 0;
    for (unsigned i = 0; i < count; ++i) {
      passed += m_limit.admits(kind, kind + std::to_string(i)) ? 1 : 0;
    }
    return passed;
  }

  Limit::Clock::time_point m_now{std::chrono::hours(1)};
  Limit m_limit{kMost, [this] { return m_now; }};
};

TEST_F(RecordLimit, LetsTheFirstOfEachKindPass) {
  EXPECT_EQ(offer("a", 6000), kMost);
  EXPECT_EQ(offer("b", 2), 2u);
}

TEST_F(RecordLimit, CountsTheRestUntilThePeriodIsOver) {
  static_cast<void>(offer("a", 6000));
  m_now += Limit::kPeriod - std::chrono::milliseconds(1);
  EXPECT_THAT(m_limit.takeEnded(), IsEmpty());
  m_now += std::chrono::milliseconds(1);
  const auto rests = m_limit.takeEnded();
  ASSERT_THAT(rests, SizeIs(1));
  EXPECT_EQ(rests[0].count, 6000 - kMost);
  EXPECT_EQ(rests[0].example, "a3");
  EXPECT_THAT(m_limit.takeEnded(), IsEmpty());
  EXPECT_EQ(offer("a", 5), kMost);
}

TEST_F(RecordLimit, TellsNothingOfKindsThatPassedWhole) {
  static_cast<void>(offer("a", kMost));
  m_now += Limit::kPeriod;
  EXPECT_THAT(m_limit.takeEnded(), IsEmpty());
}

TEST_F(RecordLimit, TellsTheRestAtOnceAtTheEnd) {
  static_cast<void>(offer("a", kMost + 2));
  const auto rests = m_limit.takeAll();
  ASSERT_THAT(rests, SizeIs(1));
  EXPECT_EQ(rests[0].count, 2u);
}

TEST_F(RecordLimit, CountsWhatNobodyHasTaken) {
  EXPECT_EQ(m_limit.countLeftOut(), 0U);
  static_cast<void>(offer("a", kMost + 2));
  m_now += Limit::kPeriod;
  static_cast<void>(offer("b", kMost + 3));
  EXPECT_EQ(m_limit.countLeftOut(), 5U);
  EXPECT_THAT(m_limit.takeEnded(), SizeIs(1));
  EXPECT_EQ(m_limit.countLeftOut(), 3U);
}

TEST_F(RecordLimit, CountsTooManyKindsAsOne) {
  for (std::size_t i = 0; i < Limit::kMostKinds; ++i) {
    EXPECT_EQ(offer(std::to_string(i), 1), 1u);
  }
  EXPECT_EQ(offer("x", 1) + offer("y", 1) + offer("z", 1) + offer("w", 1), kMost);
  EXPECT_EQ(offer("7", 1), 1u);
  const auto rests = m_limit.takeAll();
  ASSERT_THAT(rests, SizeIs(1));
  EXPECT_EQ(rests[0].count, 1u);
  EXPECT_EQ(rests[0].example, "");
}

TEST_F(RecordLimit, CountsTheFurtherKindsOfAnOwnerAsOne) {
  Limit limit(
      kMost, [this] { return m_now; }, 2);
  const auto admits = [&limit](const std::string& owner, const std::string& kind) {
    return limit.admits(owner, kind, owner + kind);
  };
  for (int i = 0; i < 10; ++i) {
    const std::string kind = std::to_string(i);
    EXPECT_EQ(admits("a", kind), i < 2 + int{kMost}) << i;
    EXPECT_EQ(admits("b" + kind, kind), true);
  }
  EXPECT_TRUE(admits("a", "0"));
  const auto rests = limit.takeAll();
  ASSERT_THAT(rests, SizeIs(1));
  EXPECT_EQ(rests[0].count, 10 - 2 - kMost);
  EXPECT_EQ(rests[0].example, "a5");
  EXPECT_TRUE(rests[0].isMixed);
  EXPECT_TRUE(admits("a", "9"));
}

TEST_F(RecordLimit, GivesNoMoreRestsThanThereIsRoomFor) {
  for (const char* const kind : {"a", "b", "c"}) {
    static_cast<void>(offer(kind, kMost + 1));
  }
  m_now += Limit::kPeriod;
  EXPECT_THAT(m_limit.takeEnded(2), SizeIs(2));
  EXPECT_THAT(m_limit.takeEnded(0), IsEmpty());
  m_now += 2 * Limit::kPeriod - std::chrono::milliseconds(1);
  const auto rests = m_limit.takeEnded(2);
  ASSERT_THAT(rests, SizeIs(1));
  EXPECT_EQ(rests[0].time, 2 * Limit::kPeriod);
}

TEST(DescribeRest, SaysHowManyAndHowLong) {
  EXPECT_EQ(quorveld::describeRest(5988, std::chrono::seconds(5)),
            "... and 5988 more of these in 5 s");
}

}  // namespace
