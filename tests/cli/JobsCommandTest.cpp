#include <nlohmann/json.hpp>

#include "tests/cli/QuorvelTest.h"

namespace {

using test::ProgramResult;
using testing::HasSubstr;
using testing::IsEmpty;

class JobsCommandTest : public test::QuorvelTest {};

TEST_F(JobsCommandTest, SaysWhereJobsAreWhereThereIsNone) {
  const ProgramResult result = run({"jobs"});
  EXPECT_EQ(result.exitStatus, 0) << result.errors;
  EXPECT_THAT(result.output, HasSubstr("--host names a host whose jobs can be listed"));
  EXPECT_THAT(runJson({"jobs"}), IsEmpty());
}

}  // namespace
