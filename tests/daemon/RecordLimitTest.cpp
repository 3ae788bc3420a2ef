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

TEST(DescribeRest, SaysHowManyAndHowLong) {
  EXPECT_EQ(quorveld::describeRest(5988, std::chrono::seconds(5)),
            "... and 5988 more of these in 5 s");
}

}  // namespace
