#include <CLI/CLI.hpp>
#include <gmock/gmock.h>

#include "cli/Command.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::string refuseOdd(const std::string& text) {
  return text == "odd" ? "is odd" : "";
}

class CommandTest : public testing::Test {
 protected:
  CommandTest() {
    m_command.add({"NAME", "A name", "", true, refuseOdd}, m_name);
    m_command.add({"REST", "Others"}, m_rest);
    m_command.add({"--count", "A count", "1..8"}, m_count, 1, 8);
    m_command.add({"--rate", "A rate", "BYTES"}, m_rate);
    m_command.addFlag("--loud", "Make noise", m_isLoud);
    m_command.setFooter("Example");
    m_command.onChosen([this] { m_isChosen = true; });
  }

  // Returns why the arguments are refused; empty when they are not.
  std::string parse(std::vector<std::string> arguments) {
    std::reverse(arguments.begin(), arguments.end());
    try {
      m_program.parse(std::move(arguments));
    } catch (const CLI::ParseError& error) {
      return error.what();
    }
    return "";
  }

  CLI::App m_program;
  cli::Command m_command{m_program, "do", "Does it"};
  std::string m_name;
  std::vector<std::string> m_rest;
  unsigned m_count = 1;
  std::uint64_t m_rate = 0;
  bool m_isLoud = false;
  bool m_isChosen = false;
};

TEST_F(CommandTest, TakesItsArguments) {
  EXPECT_EQ(
      parse({"do", "--count", "8", "a", "b", "--rate", "18446744073709551615", "--loud", "c"}), "");
  EXPECT_EQ(m_name, "a");
  EXPECT_THAT(m_rest, ElementsAre("b", "c"));
  EXPECT_EQ(m_count, 8U);
  EXPECT_EQ(m_rate, 18446744073709551615U);
  EXPECT_TRUE(m_isLoud);
  EXPECT_TRUE(m_isChosen);
}

TEST_F(CommandTest, RefusesWhatItDoesNotTake) {
  EXPECT_THAT(parse({"do"}), HasSubstr("NAME"));
  EXPECT_THAT(parse({"do", "odd"}), HasSubstr("is odd"));
  EXPECT_THAT(parse({"do", "a", "--count", "9"}), HasSubstr("9"));
  EXPECT_THAT(parse({"do", "a", "--rate", "x"}), HasSubstr("--rate"));
  EXPECT_FALSE(m_isChosen);
}

TEST_F(CommandTest, IsRefusedByWhatRunsWhenItIsChosen) {
  m_command.onChosen([] { cli::Command::refuse("not so"); });
  EXPECT_EQ(parse({"do", "a"}), "not so");
}

TEST_F(CommandTest, HasCommandsBelowIt) {
  cli::Command outer(m_program, "outer", "Has two");
  bool isInnerChosen = false;
  cli::Command(outer, "first", "One").onChosen([&isInnerChosen] { isInnerChosen = true; });
  cli::Command(outer, "second", "Two");
  outer.takeOneCommandAtMost();
  EXPECT_EQ(parse({"outer"}), "");
  EXPECT_FALSE(isInnerChosen);
  EXPECT_EQ(parse({"outer", "first"}), "");
  EXPECT_TRUE(isInnerChosen);
  EXPECT_NE(parse({"outer", "first", "second"}), "");
}

TEST_F(CommandTest, ShowsItselfInTheHelp) {
  const std::string help = m_program.get_subcommand("do")->help();
  EXPECT_THAT(help, HasSubstr("--count 1..8"));
  EXPECT_THAT(help, HasSubstr("Example"));
}

}  // namespace
