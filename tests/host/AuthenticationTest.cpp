#include <gmock/gmock.h>

#include "host/Authentication.h"

namespace {

TEST(NoAuthenticator, LetsEverybodyInAsAnOperator) {
  host::NoAuthenticator authenticator;
  EXPECT_FALSE(authenticator.demandsLogin());
  EXPECT_EQ(authenticator.check("", ""), wbem::Role::Operator);
}

}  // namespace
