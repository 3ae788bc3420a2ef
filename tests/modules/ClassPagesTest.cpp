// The documentation of the classes is what the agents serve.

#include <gmock/gmock.h>

#include "tests/support/Programs.h"
#include "tests/support/TempDirectory.h"

namespace {

TEST(ClassPages, AreCurrent) {
  const test::ProgramResult pages = test::runProgram(QUORVEL_TEST_CLASS_PAGES, {});
  ASSERT_EQ(pages.exitStatus, 0) << pages.errors;
  EXPECT_EQ(pages.output, test::readText(QUORVEL_TEST_CLASSES_MD))
      << "docs/classes.md is out of date: run scripts/generate-class-pages";
}

}  // namespace
