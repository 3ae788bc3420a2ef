// A module exports nothing: loading it is all that a host does with it.

#include <gmock/gmock.h>
#include <string>

#include "tests/support/Programs.h"

namespace {

std::string symbolsOf(const std::string& library) {
  const test::ProgramResult result =
      test::runProgram(QUORVEL_TEST_NM, {"-D", "--defined-only", "--demangle", library});
  EXPECT_EQ(result.exitStatus, 0) << result.errors;
  return result.output;
}

std::string symbolsOfModule(const std::string& name) {
  return symbolsOf(std::string(QUORVEL_TEST_MODULE_DIR) + "/" + name + ".so");
}

TEST(Symbols, OfTheModulesAreAllHidden) {
  EXPECT_EQ(symbolsOfModule("OrvexSoftwareUpdateAgent"), "");
  EXPECT_EQ(symbolsOfModule("OrvexSoftwareInventoryAgent"), "");
}

// So that an answer without symbols means something.
TEST(Symbols, OfALibraryAreSeen) {
  EXPECT_THAT(symbolsOf(QUORVEL_TEST_CORE_LIBRARY), testing::HasSubstr("core::GetCimBroker()"));
}

}  // namespace
