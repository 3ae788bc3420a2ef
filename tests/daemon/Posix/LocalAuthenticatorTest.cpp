#include <chrono>
#include <gmock/gmock.h>
#include <string>
#include <unistd.h>

#include "daemon/Posix/LocalAuthenticator.h"
#include "daemon/Posix/SystemUsers.h"
#include "tests/support/FakeClock.h"

namespace {

using quorveld::LocalAuthenticator;
using wbem::Role;

constexpr std::uint32_t kStranger = 64242;  // no user's number
constexpr std::uint32_t kDaemon = 1;        // a user of every Debian system

Role roleOf(LocalAuthenticator& users, std::uint32_t user) {
  const auto guest = users.admit(user);
  EXPECT_TRUE(guest.has_value());
  return guest ? guest->role : Role::Reader;
}

TEST(LocalAuthenticator, DemandsNoLoginAndChecksNone) {
  LocalAuthenticator users({});
  EXPECT_FALSE(users.demandsLogin());
  EXPECT_EQ(users.check("root", "secret", "127.0.0.1"), std::nullopt);
}

TEST(LocalAuthenticator, LetsRootAndTheServicesOwnUserOperate) {
  LocalAuthenticator users({});
  EXPECT_EQ(roleOf(users, 0), Role::Operator);
  EXPECT_EQ(roleOf(users, geteuid()), Role::Operator);
  EXPECT_EQ(users.admit(0)->user, "root");
}

TEST(LocalAuthenticator, LetsEverybodyElseOfThisMachineRead) {
  LocalAuthenticator users({});
  EXPECT_EQ(roleOf(users, kStranger), Role::Reader);
  EXPECT_EQ(users.admit(kStranger)->user, "64242");
}

TEST(LocalAuthenticator, LetsThoseOfItsListOperate) {
  const auto name = quorveld::findUserName(kDaemon);
  if (!name || geteuid() == kDaemon) {
    GTEST_SKIP() << "this machine has no user of number 1 but this one";
  }
  LocalAuthenticator byName({*name});
  EXPECT_EQ(roleOf(byName, kDaemon), Role::Operator);
  LocalAuthenticator byGroup({"@" + *name});
  EXPECT_EQ(roleOf(byGroup, kDaemon), Role::Operator);
  LocalAuthenticator others({"root", "@nobodys-group"});
  EXPECT_EQ(roleOf(others, kDaemon), Role::Reader);
}

TEST(LocalAuthenticator, LetsNobodyInWhoIsNotKnown) {
  LocalAuthenticator users({});
  EXPECT_FALSE(users.admit(std::nullopt).has_value());
}

TEST(LocalAuthenticator, RemembersUsersForAWhile) {
  test::FakeClock clock;
  LocalAuthenticator users({}, clock);
  for (std::uint32_t user = 0; user < 3000; ++user) {
    EXPECT_EQ(roleOf(users, 100'000 + user), Role::Reader);
  }
  EXPECT_EQ(roleOf(users, 0), Role::Operator);
  clock.sleepFor(std::chrono::seconds(6));
  EXPECT_EQ(roleOf(users, 0), Role::Operator);
}

}  // namespace
