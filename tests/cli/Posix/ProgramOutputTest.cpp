#include "tests/cli/Posix/RunningQuorvel.h"
#include "tests/support/QuorvelFixture.h"

namespace {

using test::OutputTo;
using test::ProgramResult;
using test::RunningQuorvel;

class ProgramOutputTest : public test::QuorvelFixture {};

TEST_F(ProgramOutputTest, FailsWhenItsOutputCannotBeWritten) {
  for (const OutputTo output : {OutputTo::Nowhere, OutputTo::Full}) {
    RunningQuorvel quorvel({"adapters"}, output, environment());
    const ProgramResult result = quorvel.finish();
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.errors, "quorvel: the output could not be written completely\n");
  }
}

}  // namespace
