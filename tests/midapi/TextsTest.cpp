#include <gmock/gmock.h>

#include "midapi/Texts.h"

namespace ma {
namespace {

TEST(MidApiTexts, OfPlainCharactersAreTheSameEverywhere) {
  EXPECT_EQ(toShownText("folder/a b%s.rom"), "folder/a b%s.rom");
  EXPECT_EQ(fromUtf8("a b%s"), "a b%s");
  EXPECT_EQ(toUtf8("a b%s"), "a b%s");
}

TEST(MidApiTexts, MayBeEmpty) {
  EXPECT_EQ(toShownText({}), "");
  EXPECT_EQ(fromUtf8(""), "");
  EXPECT_EQ(toUtf8(""), "");
}

}  // namespace
}  // namespace ma
