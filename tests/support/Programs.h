// Programs that a test runs beside itself.

#ifndef ORVEX_TESTS_SUPPORT_PROGRAMS_H_
#define ORVEX_TESTS_SUPPORT_PROGRAMS_H_

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace test {

struct ProgramResult {
  int exitStatus = 0;  // POSIX: 128 and the signal's number for a program that a signal ended
  // On Windows without the carriage return, one, at the end of a line.
  std::string output;
  std::string errors;
};

// A variable that a program finds changed; without a value it is not set.
struct EnvironmentChange {
  std::string name;
  std::optional<std::string> value;
};

// Returns the path of a program that stands beside the test program.
[[nodiscard]] std::filesystem::path programBeside(const std::string& name);

// Runs a program to its end. Throws std::system_error when it cannot be started. Defined per
// platform.
[[nodiscard]] ProgramResult runProgram(const std::filesystem::path& program,
                                       const std::vector<std::string>& arguments,
                                       const std::vector<EnvironmentChange>& environment = {});

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_PROGRAMS_H_
