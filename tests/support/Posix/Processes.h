// What starting and awaiting processes has in common.

#ifndef ORVEX_TESTS_SUPPORT_POSIX_PROCESSES_H_
#define ORVEX_TESTS_SUPPORT_POSIX_PROCESSES_H_

#include <array>
#include <filesystem>
#include <string>
#include <sys/types.h>
#include <vector>

#include "tests/support/Programs.h"

namespace test {

// The exit status of a process that was to become a program and could not, as in a shell.
inline constexpr int kCannotExecute = 127;

// The ends of a new pipe, which the caller closes. Throws std::system_error.
struct Pipe {
  Pipe();
  [[nodiscard]] int out() const { return ends[0]; }
  [[nodiscard]] int in() const { return ends[1]; }

  std::array<int, 2> ends{};
};

// Returns the new process, 0 in that itself. Throws std::system_error.
[[nodiscard]] pid_t forkProcess();

// Runs a program in the place of this process, which ends with kCannotExecute where it cannot.
[[noreturn]] void becomeProgram(const std::filesystem::path& program,
                                const std::vector<std::string>& arguments,
                                const std::vector<EnvironmentChange>& environment);

// Returns the exit status, or 128 and the number of the signal that ended the process.
[[nodiscard]] int awaitEnd(pid_t process);

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_POSIX_PROCESSES_H_
