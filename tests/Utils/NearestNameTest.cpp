#include <gmock/gmock.h>

#include "Utils/NearestName.h"

namespace {

std::string nearest(const std::string& written) {
  return utils::findNearestName(written,
                                {"Timeout", "Namespace", "OEMCustomizeable", "FWFilePath"});
}

TEST(NearestName, IsTheOneOfOtherLetters) {
  EXPECT_EQ(nearest("Timeout"), "Timeout");
  EXPECT_EQ(nearest("timeOUT"), "Timeout");
  EXPECT_EQ(nearest("Timout"), "Timeout");
  EXPECT_EQ(nearest("OEMCustomizable"), "OEMCustomizeable");
  EXPECT_EQ(nearest("FWFilePaths"), "FWFilePath");
  EXPECT_EQ(nearest("FWPath"), "FWFilePath");
  EXPECT_EQ(nearest("Nmaespace"), "Namespace");
}

TEST(NearestName, IsNoneForSomethingElse) {
  EXPECT_EQ(nearest("LogLevel"), "");
  EXPECT_EQ(nearest(""), "");
  EXPECT_EQ(nearest("x"), "");
  EXPECT_EQ(nearest(std::string(100'000, 'T')), "");
  EXPECT_EQ(utils::findNearestName("Timeout", {}), "");
}

TEST(NearestName, IsTheFirstOfSeveral) {
  EXPECT_EQ(utils::findNearestName("bat", {"cat", "hat"}), "cat");
}

}  // namespace
