#include <gmock/gmock.h>
#include <string>
#include <utility>
#include <vector>

#include "Os/FilePlace.h"

namespace {

using testing::ElementsAre;
using testing::Pair;

std::vector<std::pair<std::string, std::string>> wayTo(const std::string& path) {
  std::vector<std::pair<std::string, std::string>> way;
  os::walkPlaces(path, [&way](const std::string& fileSystem, const std::string& directory) {
    way.emplace_back(fileSystem, directory);
    return true;
  });
  return way;
}

TEST(WindowsFilePlace, IsTheDriveByEachSpelling) {
  const auto expected =
      ElementsAre(Pair("c:", "c:"), Pair("c:", "c:/fw"), Pair("c:", "c:/fw/a.rom"));
  EXPECT_THAT(wayTo("C:\\FW\\a.rom"), expected);
  EXPECT_THAT(wayTo("c:/fw/x/../A.ROM"), expected);
  EXPECT_THAT(wayTo("\\\\?\\C:\\FW\\a.rom"), expected);
}

TEST(WindowsFilePlace, IsTheShare) {
  for (const char* path : {"\\\\Server\\Share\\a.rom", "\\\\?\\UNC\\Server\\Share\\a.rom"}) {
    EXPECT_THAT(wayTo(path), ElementsAre(Pair("//server/share", "//server/share"),
                                         Pair("//server/share", "//server/share/a.rom")));
  }
}

}  // namespace
