#include <nlohmann/json.hpp>

#include "tests/support/QuorvelFixture.h"

namespace {

using test::ProgramResult;
using testing::HasSubstr;
using testing::IsEmpty;

class JobsCommandTest : public test::QuorvelFixture {};

TEST_F(JobsCommandTest, SaysWhereJobsAreWhereThereIsNone) {
  const ProgramResult result = run({"jobs"});
  EXPECT_EQ(result.exitStatus, 0) << result.errors;
  EXPECT_THAT(result.output, HasSubstr("There are no jobs: those of 'quorvel update' run in that "
                                       "process and end with it."));
  EXPECT_THAT(runJson({"jobs"}), IsEmpty());
}

}  // namespace
