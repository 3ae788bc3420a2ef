// The test that becomes another user needs root.

#include <gmock/gmock.h>
#include <unistd.h>

#include "daemon/Posix/Privileges.h"
#include "tests/support/Posix/ChildProcess.h"

namespace {

using test::ChildProcess;

TEST(Privileges, AreThoseOfTheUser) {
  const quorveld::Privileges privileges = quorveld::readPrivileges();
  EXPECT_EQ(privileges.isRoot, geteuid() == 0);
  EXPECT_TRUE(privileges.mayUseDefaultSocket || geteuid() != 0);
}

TEST(Privileges, OfRootAndOfTheUserLetNobodyKeepThemOut) {
  EXPECT_THAT(quorveld::findTrustedUsers(), testing::UnorderedElementsAre(0U, geteuid()));
}

TEST(Privileges, AreNoneOfAUserWhoIsNotLetIn) {
  if (geteuid() != 0) {
    GTEST_SKIP() << "only root can become another user";
  }
  ChildProcess child([](ChildProcess::Link&) {
    if (seteuid(64242) != 0) {
      return 2;
    }
    const quorveld::Privileges privileges = quorveld::readPrivileges();
    return privileges.isRoot || privileges.mayUseDefaultSocket ? 1 : 0;
  });
  EXPECT_EQ(child.wait(), 0);
}

}  // namespace
