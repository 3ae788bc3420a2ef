#include <gmock/gmock.h>
#include <limits>

#include "client/Value.h"
#include "tests/client/ValuePrinter.h"

namespace {

using client::Value;
using testing::Optional;

TEST(Value, IsNullUntilItIsMadeFromSomething) {
  EXPECT_TRUE(Value().isNull());
  EXPECT_FALSE(Value(false).isNull());
  EXPECT_FALSE(Value("").isNull());
  EXPECT_FALSE(Value::array().isNull());
}

TEST(Value, IsReadAsTheTypeThatItHas) {
  EXPECT_THAT(Value("a").as<std::string>(), Optional(std::string("a")));
  EXPECT_THAT(Value(true).as<bool>(), Optional(true));
  EXPECT_THAT(Value(-1).as<int>(), Optional(-1));
  EXPECT_THAT(Value(std::vector<int>{1, 2}).as<std::vector<unsigned>>(),
              Optional(std::vector<unsigned>{1, 2}));
  EXPECT_THAT(Value(true).as<unsigned>(), Optional(1U));
}

TEST(Value, IsReadAsNoOtherType) {
  EXPECT_EQ(Value("1").as<int>(), std::nullopt);
  EXPECT_EQ(Value(1).as<std::string>(), std::nullopt);
  EXPECT_EQ(Value(1.0).as<int>(), std::nullopt);
  EXPECT_EQ(Value().as<int>(), std::nullopt);
  EXPECT_EQ(Value(1).as<std::vector<int>>(), std::nullopt);
  EXPECT_EQ(Value::array({Value(1), Value("b")}).as<std::vector<int>>(), std::nullopt);
}

TEST(Value, IsNoNumberOutOfRange) {
  EXPECT_EQ(Value(-1).as<unsigned>(), std::nullopt);
  EXPECT_EQ(Value(65536).as<std::uint16_t>(), std::nullopt);
  constexpr auto kLargest = std::numeric_limits<std::uint64_t>::max();
  EXPECT_THAT(Value(kLargest).as<std::uint64_t>(), Optional(kLargest));
  EXPECT_EQ(Value(kLargest).as<std::int64_t>(), std::nullopt);
}

TEST(Value, IsTheSameNumberSignedOrNot) {
  EXPECT_EQ(Value(7), Value(7U));
  EXPECT_NE(Value(-1), Value(std::numeric_limits<std::uint64_t>::max()));
  EXPECT_NE(Value(1), Value("1"));
}

TEST(Value, KeepsFieldsInTheOrderInWhichTheyCame) {
  Value object;
  object.set("b", 1);
  object.set("a", "text");
  object.set("b", 2);
  EXPECT_EQ(object, Value::object({{"b", 2}, {"a", "text"}}));
  EXPECT_NE(object, Value::object({{"a", "text"}, {"b", 2}}));
  EXPECT_EQ(*object.find("b"), Value(2));
  EXPECT_EQ(object.find("c"), nullptr);
  EXPECT_EQ(Value(1).find("b"), nullptr);
}

TEST(Value, TakesItemsBehindEachOther) {
  Value array;
  array.push(Value(1));
  array.push(Value());
  ASSERT_NE(array.items(), nullptr);
  EXPECT_THAT(*array.items(), testing::ElementsAre(Value(1), Value()));
}

}  // namespace
