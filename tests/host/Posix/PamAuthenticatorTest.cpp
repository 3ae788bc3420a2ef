#include <gmock/gmock.h>
#include <grp.h>
#include <pwd.h>
#include <string>
#include <unistd.h>

#include "host/Posix/PamAuthenticator.h"

namespace {

std::string nameOfThisUser() {
  const passwd* const entry = getpwuid(getuid());
  return entry == nullptr ? "" : entry->pw_name;
}

std::string groupOfThisUser() {
  const passwd* const user = getpwuid(getuid());
  const group* const entry = user == nullptr ? nullptr : getgrgid(user->pw_gid);
  return entry == nullptr ? "" : entry->gr_name;
}

bool passesSecret(const std::string& /*user*/, const std::string& password) {
  return password == "secret";
}

TEST(IsListed, KnowsUsersByName) {
  EXPECT_TRUE(host::isListed({"anna", "bert"}, "bert"));
  EXPECT_FALSE(host::isListed({"anna", "bert"}, "ber"));
  EXPECT_FALSE(host::isListed({}, "anna"));
  EXPECT_FALSE(host::isListed({"@anna"}, "@anna"));
}

TEST(IsListed, KnowsTheMembersOfGroups) {
  ASSERT_NE(groupOfThisUser(), "");
  EXPECT_TRUE(host::isListed({"@" + groupOfThisUser()}, nameOfThisUser()));
  EXPECT_FALSE(host::isListed({"@" + groupOfThisUser()}, "no-such-user"));
  EXPECT_FALSE(host::isListed({"@no-such-group"}, nameOfThisUser()));
}

TEST(PamAuthenticator, GivesRolesByItsLists) {
  host::PamAuthenticator users({{"anna"}, {"anna", "bert"}}, passesSecret);
  EXPECT_TRUE(users.demandsLogin());
  EXPECT_EQ(users.check("anna", "secret"), wbem::Role::Operator);
  EXPECT_EQ(users.check("bert", "secret"), wbem::Role::Reader);
  EXPECT_FALSE(users.check("carl", "secret"));
  EXPECT_FALSE(users.check("anna", "wrong"));
}

TEST(PamAuthenticator, AsksForUsersWithoutARoleToo) {
  std::string asked;
  host::PamAuthenticator users({{"anna"}, {}},
                               [&asked](const std::string& user, const std::string&) {
                                 asked = user;
                                 return true;
                               });
  EXPECT_FALSE(users.check("carl", "secret"));
  EXPECT_EQ(asked, "carl");
}

TEST(VerifyByPam, RefusesAUserThatTheSystemDoesNotKnow) {
  EXPECT_FALSE(host::verifyByPam("quorveld", "no-such-user", "secret"));
}

TEST(PamAuthenticator, RefusesAWrongPasswordByPam) {
  host::PamAuthenticator users({{nameOfThisUser()}, {}});
  EXPECT_FALSE(users.check(nameOfThisUser(), "certainly not the password"));
}

}  // namespace
