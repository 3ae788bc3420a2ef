#include <string>

#include "tests/support/QuorvelFixture.h"
#include "tests/support/Regex.h"

namespace {

using test::MatchesRegex;
using test::ProgramResult;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

class ProgramTest : public test::QuorvelFixture {};

TEST_F(ProgramTest, PrintsItsVersionInFrontOfAndBehindACommand) {
  for (const Arguments& arguments : {Arguments{"--version"}, Arguments{"adapters", "--version"}}) {
    const ProgramResult result = run(arguments);
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_THAT(result.output, MatchesRegex("quorvel [0-9]+\\.[0-9]+\\.[0-9]+\n"));
  }
}

TEST_F(ProgramTest, HelpsWithExamplesForItselfAndEachCommand) {
  for (const Arguments& arguments :
       {Arguments{"--help"}, Arguments{"adapters", "--help"},
        Arguments{"adapters", "add", "--help"}, Arguments{"associations", "--help"},
        Arguments{"check", "--help"}, Arguments{"classes", "--help"},
        Arguments{"describe", "--help"}, Arguments{"identities", "--help"},
        Arguments{"instances", "--help"}, Arguments{"invoke", "--help"},
        Arguments{"update", "--help"}}) {
    const ProgramResult result = run(arguments);
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_THAT(result.output, AllOf(HasSubstr("Usage: "), HasSubstr("Example")));
    EXPECT_EQ(result.errors, "");
  }
}

TEST_F(ProgramTest, RefusesWrongUsage) {
  expectUsageFault({}, StartsWith("quorvel: A command is required\nTry 'quorvel --help'."));
  expectUsageFault({"dance"}, HasSubstr("not expected: dance"));
  expectUsageFault({"--dance"}, HasSubstr("not expected: --dance"));
  expectUsageFault({"adapters", "list", "extra"},
                   AllOf(HasSubstr("extra"), HasSubstr("Try 'quorvel adapters list --help'.")));
  expectUsageFault({"instances"}, HasSubstr("CLASS is required"));
  expectUsageFault({"instances", "A", "B"}, HasSubstr("B"));
  expectUsageFault({"invoke"}, HasSubstr("OBJECTPATH is required"));
  expectUsageFault({"invoke", "A.b=c"}, HasSubstr("METHOD is required"));
  expectUsageFault({"instances", "X", "--host", "server1"},
                   AllOf(HasSubstr("not expected: server1"),
                         HasSubstr("If 'server1' is meant for --host: an address begins with")));
  expectUsageFault({"instances", "X", "--host", "http://server1", "extra"},
                   testing::Not(HasSubstr("is meant for")));
  expectUsageFault({"update", "0000:03:00", "a.rom", "--types"}, HasSubstr("--types"));
  expectUsageFault({"update", "0000:03:00", "a.rom", "--types", ""}, HasSubstr("name a type"));
}

TEST_F(ProgramTest, RefusesGlobalOptionsWithoutSense) {
  for (const char* level : {"4", "-1", "33", "x", ""}) {
    expectUsageFault({"--log-level", level, "adapters"}, HasSubstr("must be 0, 1, 2 or 3"));
  }
  expectUsageFault({"adapters", "--adapters", ""}, HasSubstr("must not be empty"));
  expectUsageFault({"adapters", "--config"}, HasSubstr("--config"));
}

// The text of an error may quote a file, a host or whoever chose an argument.
TEST_F(ProgramTest, LetsNoTextCommandTheTerminal) {
  const std::string evil = "a\x1b[2J\x7f";
  const std::string shown = "a\\x1b[2J\\x7f";
  expectUsageFault({"dance" + evil}, HasSubstr("not expected: dance" + shown));
  const ProgramResult unknown = run({"update", evil, "a.rom"});
  EXPECT_EQ(unknown.exitStatus, 1);
  EXPECT_THAT(unknown.errors, HasSubstr("no adapter or port '" + shown + "'"));
}

}  // namespace
