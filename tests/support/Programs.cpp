#include "tests/support/Programs.h"

#include "Os/Environment.h"

namespace test {

std::filesystem::path programBeside(const std::string& name) {
  const std::filesystem::path program = os::getProgramPath();
  return program.parent_path() / (name + program.extension().string());
}

}  // namespace test
