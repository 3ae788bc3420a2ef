#include <gmock/gmock.h>

#include "cli/HostArgument.h"

namespace {

using cli::HostArgument;
using cli::Word;
using testing::ElementsAre;
using testing::ElementsAreArray;
using Arguments = std::vector<std::string>;

HostArgument complete(const Arguments& arguments) {
  return cli::completeHost(arguments, [](const std::string& text) {
    if (text == "jobs") {
      return Word::Command;
    }
    return text == "adapters" || text == "update" ? Word::CommandWithWords : Word::NoCommand;
  });
}

TEST(HostArgument, IsTheServiceOfThisMachineWhereNothingFollows) {
  EXPECT_THAT(complete({"jobs", "--host"}).arguments, ElementsAre("jobs", "--host=unix:"));
  EXPECT_THAT(complete({"--host"}).arguments, ElementsAre("--host=unix:"));
  EXPECT_THAT(complete({"--host", "jobs"}).arguments, ElementsAre("--host=unix:", "jobs"));
  EXPECT_THAT(complete({"jobs", "--host", "--json"}).arguments,
              ElementsAre("jobs", "--host=unix:", "--json"));
}

TEST(HostArgument, IsTheServiceOfThisMachineWhereTheCommandsOwnFollows) {
  const HostArgument target = complete({"update", "--host", "0000:03:00", "a.rom"});
  EXPECT_THAT(target.arguments, ElementsAre("update", "--host=unix:", "0000:03:00", "a.rom"));
  EXPECT_EQ(target.follower, "0000:03:00");
  EXPECT_THAT(complete({"update", "0000:03:00", "--host", "file:///a.rom"}).arguments,
              ElementsAre("update", "0000:03:00", "--host=unix:", "file:///a.rom"));
}

TEST(HostArgument, IsWhatIsGiven) {
  for (const Arguments& arguments :
       {Arguments{"--host=server1", "jobs"},
        {"jobs", "--host="},
        {"jobs", "--host", ""},
        {"jobs", "--host", "http://server1"},
        {"update", "--host", "https://me@server1:5989", "0000:03:00", "a.rom"},
        {"update", "--host", "unix:/run/other.sock", "0000:03:00", "a.rom"},
        {"--host", "unix:", "adapters"},
        // Nothing else can stand there: what is wrong with it is told of an address.
        {"--host", "server1", "jobs"},
        {"--host", "", "jobs"},
        {"--host", "server1"},
        {"jobs", "--host", "server1"},
        {"jobs", "--", "--host"},
        {}}) {
    const HostArgument argument = complete(arguments);
    EXPECT_THAT(argument.arguments, ElementsAreArray(arguments));
    EXPECT_EQ(argument.follower, "");
  }
}

// The value of an option is no option.
TEST(HostArgument, MayHaveAnyAddressThatBeginsAsOne) {
  EXPECT_THAT(complete({"--host", "unix:jobs", "jobs", "--host"}).arguments,
              ElementsAre("--host", "unix:jobs", "jobs", "--host=unix:"));
}

}  // namespace
