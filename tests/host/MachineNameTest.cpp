#include <cstdlib>
#include <gmock/gmock.h>

#include "Os/Environment.h"
#include "host/MachineName.h"
#include "tests/support/Variables.h"

namespace {

TEST(NameMachine, TakesTheSystemsNameWhereNoneIsSet) {
  test::unsetVariable("COMPUTERNAME");
  host::nameMachine();
  EXPECT_NE(os::getMachineName(), "");
  EXPECT_EQ(os::getComputerName(), os::getMachineName());
}

TEST(NameMachine, LeavesANameThatIsSet) {
  test::setVariable("COMPUTERNAME", "lab");
  host::nameMachine();
  EXPECT_EQ(os::getComputerName(), "lab");
}

}  // namespace
