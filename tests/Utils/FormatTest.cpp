#include <gmock/gmock.h>

#include "Utils/Format.h"

namespace {

TEST(Format, FormatsAsPrintfDoes) {
  EXPECT_EQ(utils::format("%s:%d:%02x %%", "a", -7, 10U), "a:-7:0a %");
  const char* nothing = "";
  EXPECT_EQ(utils::format("%s", nothing), "");
}

TEST(Format, KeepsTextsOfEveryLengthWhole) {
  constexpr std::size_t kLengths[] = {0, 1, 254, 255, 256, 257, 511, 512, 4096, 1'000'000};
  for (const std::size_t length : kLengths) {
    const std::string text(length, 'x');
    EXPECT_EQ(utils::format("%s", text.c_str()), text);
    EXPECT_EQ(utils::format("<%s %d>", text.c_str(), 42), "<" + text + " 42>");
  }
}

TEST(Format, TakesConversionsInArgumentsAsTheyStand) {
  EXPECT_EQ(utils::format("%s", "%s%n%d%%"), "%s%n%d%%");
}

TEST(Format, KeepsANulCharacter) {
  EXPECT_EQ(utils::format("a%cb", '\0'), std::string("a\0b", 3));
}

}  // namespace
