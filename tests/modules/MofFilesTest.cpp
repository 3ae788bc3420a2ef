// The schema files are what the agents declare.

#include <gmock/gmock.h>
#include <string>

#include "tests/support/Programs.h"
#include "tests/support/TempDirectory.h"

namespace {

class MofFiles : public testing::TestWithParam<std::string> {};

TEST_P(MofFiles, AreCurrent) {
  const test::ProgramResult file = test::runProgram(QUORVEL_TEST_MOF_FILES, {GetParam()});
  ASSERT_EQ(file.exitStatus, 0) << file.errors;
  EXPECT_EQ(file.output,
            test::readText(std::string(QUORVEL_TEST_SCHEMA_DIR "/") + GetParam() + ".mof"))
      << "schema/ is out of date: run scripts/generate-mof";
}

INSTANTIATE_TEST_SUITE_P(Schema, MofFiles, testing::Values("cim", "orvex"),
                         [](const auto& file) { return file.param; });

}  // namespace
