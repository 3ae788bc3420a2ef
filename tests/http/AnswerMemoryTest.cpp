#include <gtest/gtest.h>
#include <optional>
#include <utility>

#include "http/AnswerMemory.h"

namespace {

using http::AnswerMemory;

constexpr std::size_t kLarge = AnswerMemory::kSmallAnswer + 1;

TEST(AnswerMemory, CountsWhatLargeAnswersHold) {
  AnswerMemory memory(3 * kLarge);
  {
    const auto first = memory.take(kLarge);
    const auto second = memory.take(kLarge);
    ASSERT_TRUE(first && second);
    EXPECT_TRUE(first->isLarge());
    EXPECT_EQ(memory.held(), 2 * kLarge);
  }
  EXPECT_EQ(memory.held(), 0U);
}

TEST(AnswerMemory, LetsNoMoreThroughThanThereIsRoomFor) {
  AnswerMemory memory(2 * kLarge);
  auto first = memory.take(kLarge);
  const auto second = memory.take(kLarge);
  EXPECT_TRUE(first && second);
  EXPECT_FALSE(memory.take(kLarge));
  first.reset();
  EXPECT_FALSE(memory.take(kLarge + 1));
  EXPECT_TRUE(memory.take(kLarge));
}

TEST(AnswerMemory, LetsSmallAnswersThroughWhateverLargeOnesHold) {
  AnswerMemory memory(kLarge);
  const auto large = memory.take(kLarge);
  const auto small = memory.take(AnswerMemory::kSmallAnswer);
  ASSERT_TRUE(small);
  EXPECT_FALSE(small->isLarge());
  EXPECT_EQ(memory.held(), kLarge);
}

TEST(AnswerMemory, LetsAnAnswerThroughAloneThatIsLargerThanTheRoom) {
  AnswerMemory memory(kLarge);
  {
    const auto huge = memory.take(5 * kLarge);
    EXPECT_TRUE(huge);
    EXPECT_FALSE(memory.take(kLarge));
  }
  const auto large = memory.take(kLarge);
  EXPECT_FALSE(memory.take(5 * kLarge));
}

TEST(AnswerMemory, CountsAShareOnceThatIsMoved) {
  AnswerMemory memory(kLarge);
  {
    const AnswerMemory::Share moved = [&memory] {
      std::optional<AnswerMemory::Share> share = memory.take(kLarge);
      return *std::move(share);
    }();
    EXPECT_EQ(memory.held(), kLarge);
  }
  EXPECT_EQ(memory.held(), 0U);
}

}  // namespace
