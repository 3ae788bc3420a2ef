#include <gmock/gmock.h>
#include <grp.h>
#include <pwd.h>
#include <string>
#include <unistd.h>

#include "daemon/Posix/SystemUsers.h"

namespace {

constexpr uid_t kNobodysNumber = 64242;

std::string nameOfThisUser() {
  const passwd* const entry = getpwuid(getuid());
  return entry == nullptr ? "" : entry->pw_name;
}

std::string groupOfThisUser() {
  const passwd* const user = getpwuid(getuid());
  const group* const entry = user == nullptr ? nullptr : getgrgid(user->pw_gid);
  return entry == nullptr ? "" : entry->gr_name;
}

TEST(IsListed, KnowsUsersByName) {
  EXPECT_TRUE(quorveld::isListed({"anna", "bert"}, "bert"));
  EXPECT_FALSE(quorveld::isListed({"anna", "bert"}, "ber"));
  EXPECT_FALSE(quorveld::isListed({}, "anna"));
  EXPECT_FALSE(quorveld::isListed({"@anna"}, "@anna"));
}

TEST(IsListed, KnowsTheMembersOfGroups) {
  ASSERT_NE(groupOfThisUser(), "");
  EXPECT_TRUE(quorveld::isListed({"@" + groupOfThisUser()}, nameOfThisUser()));
  EXPECT_FALSE(quorveld::isListed({"@" + groupOfThisUser()}, "no-such-user"));
  EXPECT_FALSE(quorveld::isListed({"@no-such-group"}, nameOfThisUser()));
}

TEST(FindUserName, KnowsUsersByNumber) {
  EXPECT_EQ(quorveld::findUserName(0), "root");
  EXPECT_EQ(quorveld::findUserName(getuid()), nameOfThisUser());
  EXPECT_EQ(quorveld::findUserName(kNobodysNumber), std::nullopt);
}

}  // namespace
