#include <gmock/gmock.h>

#include "daemon/Authentication.h"

namespace {

TEST(NoAuthenticator, LetsEverybodyInAsAnOperator) {
  quorveld::NoAuthenticator authenticator;
  EXPECT_FALSE(authenticator.demandsLogin());
  EXPECT_EQ(authenticator.check("", "", "127.0.0.1"), wbem::Role::Operator);
}

}  // namespace
