#include <CLI/CLI.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "host/SharedOptions.h"

namespace {

class SharedOptions : public testing::Test {
 protected:
  SharedOptions() {
    host::addAdaptersOption(m_app, m_adapters);
    host::addLogLevelOption(m_app, m_level);
  }

  // Returns what the parser says of the arguments, nothing where it takes them.
  std::string faultOf(const std::vector<std::string>& arguments) {
    try {
      // The parser takes them from the back.
      m_app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::ParseError& error) {
      return error.what();
    }
    return "";
  }

  CLI::App m_app;
  std::string m_adapters;
  std::string m_level;
};

TEST_F(SharedOptions, TakeADirectoryAndALevel) {
  EXPECT_EQ(faultOf({"--adapters", "a b", "--log-level", "3"}), "");
  EXPECT_EQ(m_adapters, "a b");
  EXPECT_EQ(m_level, "3");
  EXPECT_EQ(faultOf({"--log-level=0"}), "");
  EXPECT_EQ(m_level, "0");
}

TEST_F(SharedOptions, StayEmptyWhereTheyAreNotGiven) {
  EXPECT_EQ(faultOf({}), "");
  EXPECT_EQ(m_adapters, "");
  EXPECT_EQ(m_level, "");
}

TEST_F(SharedOptions, RefuseAnEmptyDirectory) {
  EXPECT_THAT(faultOf({"--adapters", ""}), testing::HasSubstr("must not be empty"));
}

TEST_F(SharedOptions, RefuseLevelsThatAreNone) {
  for (const char* level : {"", "4", "-1", "03", "debug", "1 "}) {
    EXPECT_THAT(faultOf({"--log-level", level}), testing::HasSubstr("must be 0, 1, 2 or 3"))
        << level;
  }
}

TEST(EmptyText, IsRefusedAsAnArgument) {
  EXPECT_EQ(host::refuseEmpty(""), "must not be empty");
  EXPECT_EQ(host::refuseEmpty("a"), "");
}

}  // namespace
