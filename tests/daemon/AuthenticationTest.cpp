#include <gmock/gmock.h>

#include "daemon/Authentication.h"

namespace {

TEST(NoAuthenticator, LetsEverybodyInAsAnOperator) {
  quorveld::NoAuthenticator authenticator;
  EXPECT_FALSE(authenticator.demandsLogin());
  const auto guest = authenticator.admit(std::nullopt).guest;
  ASSERT_TRUE(guest.has_value());
  EXPECT_EQ(guest->user, "");
  EXPECT_EQ(guest->role, wbem::Role::Operator);
  EXPECT_EQ(authenticator.check("", "", "127.0.0.1"), wbem::Role::Operator);
}

}  // namespace
