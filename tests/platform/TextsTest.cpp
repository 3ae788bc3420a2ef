#include <filesystem>
#include <gmock/gmock.h>

#include "platform/Texts.h"

namespace {

using testing::Optional;

TEST(Texts, OfPlainCharactersAreTheSameEverywhere) {
  const std::filesystem::path path = platform::toPath("folder/a b%s.rom");

  EXPECT_EQ(path, std::filesystem::path("folder/a b%s.rom"));
  EXPECT_THAT(platform::toText(path), Optional(std::string("folder/a b%s.rom")));
  EXPECT_EQ(platform::toShownText(path), "folder/a b%s.rom");
  EXPECT_EQ(platform::fromUtf8("a b%s"), "a b%s");
  EXPECT_EQ(platform::toUtf8("a b%s"), "a b%s");
}

TEST(Texts, MayBeEmpty) {
  EXPECT_TRUE(platform::toPath("").empty());
  EXPECT_THAT(platform::toText({}), Optional(std::string()));
  EXPECT_EQ(platform::toShownText({}), "");
  EXPECT_EQ(platform::fromUtf8(""), "");
  EXPECT_EQ(platform::toUtf8(""), "");
}

TEST(Texts, OfPathsHaveSlashesWhereThatIsAskedFor) {
  EXPECT_THAT(platform::toGenericText(std::filesystem::path("a/b").make_preferred()),
              Optional(std::string("a/b")));
}

}  // namespace
