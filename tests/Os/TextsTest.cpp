#include <filesystem>
#include <gmock/gmock.h>

#include "Os/Texts.h"

namespace {

using testing::Optional;

TEST(Texts, OfPlainCharactersAreTheSameEverywhere) {
  const std::filesystem::path path = os::toPath("folder/a b%s.rom");

  EXPECT_EQ(path, std::filesystem::path("folder/a b%s.rom"));
  EXPECT_THAT(os::toText(path), Optional(std::string("folder/a b%s.rom")));
  EXPECT_EQ(os::toShownText(path), "folder/a b%s.rom");
  EXPECT_EQ(os::toUtf8("a b%s"), "a b%s");
}

TEST(Texts, MayBeEmpty) {
  EXPECT_TRUE(os::toPath("").empty());
  EXPECT_THAT(os::toText({}), Optional(std::string()));
  EXPECT_EQ(os::toShownText({}), "");
  EXPECT_EQ(os::toUtf8(""), "");
}

TEST(Texts, OfPathsHaveSlashesWhereThatIsAskedFor) {
  EXPECT_THAT(os::toGenericText(std::filesystem::path("a/b").make_preferred()),
              Optional(std::string("a/b")));
}

}  // namespace
