#include <gmock/gmock.h>
#include <sstream>
#include <string>
#include <vector>

#include "daemon/CommandLine.h"
#include "tests/support/Regex.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Throws.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class CommandLineTest : public testing::Test {
 protected:
  quorveld::CommandLine read(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "quorveld");
    std::vector<const char*> pointers;
    for (const std::string& argument : arguments) {
      pointers.push_back(argument.c_str());
    }
    return quorveld::readCommandLine(static_cast<int>(pointers.size()), pointers.data(), m_out,
                                     m_err);
  }

  void expectUsageFault(const std::vector<std::string>& arguments, const std::string& text) {
    m_err.str("");
    const quorveld::CommandLine result = read(arguments);
    EXPECT_FALSE(result.config);
    EXPECT_EQ(result.status, quorveld::ExitStatus::Usage);
    EXPECT_THAT(m_err.str(), StartsWith("quorveld: "));
    EXPECT_THAT(m_err.str(), HasSubstr(text));
    EXPECT_EQ(m_out.str(), "");
  }

  std::ostringstream m_out;
  std::ostringstream m_err;
  test::TempDirectory m_directory;
};

TEST_F(CommandLineTest, PrintsHelpAndVersion) {
  EXPECT_EQ(read({"--help"}).status, quorveld::ExitStatus::Done);
  EXPECT_THAT(m_out.str(), HasSubstr("--listen ADDRESS:PORT"));
  m_out.str("");
  const quorveld::CommandLine version = read({"--version"});
  EXPECT_FALSE(version.config);
  EXPECT_EQ(version.status, quorveld::ExitStatus::Done);
  EXPECT_THAT(m_out.str(), test::MatchesRegex("quorveld [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST_F(CommandLineTest, PutsArgumentsBeforeTheSettingsOfTheFile) {
  const std::string file = m_directory
                               .writePrivate("quorveld.conf",
                                             "listen = 127.0.0.1:1\nadapters = /file\n"
                                             "module = /file.so\nlog-level = 1\n"
                                             "max-connections = 7\n")
                               .string();
  const quorveld::CommandLine result =
      read({"--config", file, "--listen", "127.0.0.1:2", "--listen", "[::1]:3", "--adapters",
            "here", "--module", "one.so", "--module", "two.so", "--log-level", "3"});
  ASSERT_TRUE(result.config) << m_err.str();
  ASSERT_EQ(result.config->listen.size(), 2u);
  EXPECT_EQ(result.config->listen[0].port, 2);
  EXPECT_EQ(result.config->listen[1].address, "::1");
  EXPECT_EQ(result.config->adapters, "here");
  EXPECT_THAT(result.config->modules, ElementsAre("one.so", "two.so"));
  EXPECT_EQ(result.config->logLevel, "3");
  EXPECT_EQ(result.config->maxConnections, 7u);
}

TEST_F(CommandLineTest, CompletesTheSettings) {
  const std::string file = m_directory.writePrivate("quorveld.conf", "\n").string();
  const quorveld::CommandLine result = read({"--config", file});
  ASSERT_TRUE(result.config) << m_err.str();
  ASSERT_GE(result.config->listen.size(), 1u);
  EXPECT_EQ(result.config->listen[0].port, 5988);
  EXPECT_EQ(result.config->authentication, quorveld::AuthenticationKind::Local);
}

TEST_F(CommandLineTest, RefusesWrongArguments) {
  expectUsageFault({"--speed"}, "--speed");
  expectUsageFault({"serve"}, "serve");
  expectUsageFault({"--log-level", "4"}, "must be 0, 1, 2 or 3");
  expectUsageFault({"--adapters", ""}, "must not be empty");
  expectUsageFault({"--module", ""}, "must not be empty");
  expectUsageFault({"--config", ""}, "must not be empty");
  expectUsageFault({"--listen"}, "--listen");
}

TEST_F(CommandLineTest, RefusesSettingsThatCannotBePutInForce) {
  const std::string file = m_directory.writePrivate("quorveld.conf", "\n").string();
  EXPECT_THAT(
      [&] {
        static_cast<void>(read({"--config", file, "--listen", "5988"}));
      },
      test::ThrowsExactly<quorveld::ConfigurationFault>(
          StartsWith("--listen: '5988' is no address to listen on")));
  EXPECT_THAT(
      [&] {
        static_cast<void>(read({"--config", file, "--listen", "0.0.0.0:0"}));
      },
      test::ThrowsExactly<quorveld::ConfigurationFault>(
          StartsWith("listen: 0.0.0.0:0 would send passwords")));
}

}  // namespace
