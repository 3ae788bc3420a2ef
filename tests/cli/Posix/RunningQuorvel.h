// The program `quorvel`, or its host `quorveld`, as a child process that a test watches and
// disturbs while it runs.

#ifndef ORVEX_TESTS_CLI_POSIX_RUNNINGQUORVEL_H_
#define ORVEX_TESTS_CLI_POSIX_RUNNINGQUORVEL_H_

#include <filesystem>
#include <string>
#include <sys/types.h>
#include <vector>

#include "tests/support/Programs.h"

namespace test {

// Where the program's standard output goes.
enum class OutputTo {
  Pipe,
  Terminal,  // a pseudo terminal
  Nowhere,   // the stream is closed
  Full,      // a device that takes nothing
};

// Killed at destruction when it still runs. Throws std::system_error where the platform fails.
class RunningQuorvel {
 public:
  RunningQuorvel(const std::vector<std::string>& arguments, OutputTo output,
                 const std::vector<EnvironmentChange>& environment,
                 const std::string& program = "quorvel");
  RunningQuorvel(const RunningQuorvel&) = delete;
  RunningQuorvel& operator=(const RunningQuorvel&) = delete;
  ~RunningQuorvel();

  // Return whether the text came on the stream, within a deadline.
  [[nodiscard]] bool awaitOutput(const std::string& text);
  [[nodiscard]] bool awaitErrors(const std::string& text);

  // What has come on standard output until now.
  [[nodiscard]] const std::string& output() const { return m_result.output; }

  void signal(int number) const;
  // What the process has open under a number; empty for nothing.
  [[nodiscard]] std::filesystem::path openFile(int number) const;
  // Stops reading its output, as a pager that is left does.
  void abandonOutput();

  // Waits for the end and returns what it printed and how it ended.
  [[nodiscard]] ProgramResult finish();

 private:
  // Reads what is there, waiting for it at most that long. Returns false when both streams ended.
  bool read(int milliseconds);
  [[nodiscard]] bool await(std::string ProgramResult::*stream, const std::string& text);

  pid_t m_process = 0;
  int m_output = -1;
  int m_errors = -1;
  ProgramResult m_result;
};

}  // namespace test

#endif  // ORVEX_TESTS_CLI_POSIX_RUNNINGQUORVEL_H_
