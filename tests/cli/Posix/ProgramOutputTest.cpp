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

// There are hosts on POSIX alone.
TEST_F(ProgramOutputTest, SaysWhichJobsCanBeListedWhereThereIsNone) {
  EXPECT_THAT(run({"jobs"}).output,
              testing::EndsWith(" --host names a host whose jobs can be listed.\n"));
}

}  // namespace
