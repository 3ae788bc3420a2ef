// The program `quorvel` at a console of its own, as a child process that a test watches and
// interrupts while it runs.

#ifndef ORVEX_TESTS_CLI_WINDOWS_CONSOLEPROGRAM_H_
#define ORVEX_TESTS_CLI_WINDOWS_CONSOLEPROGRAM_H_

#include <memory>
#include <string>
#include <vector>

#include "platform/Windows/Handle.h"
#include "tests/support/Programs.h"

namespace test {

// The console has the system's code page at first, and no window. This process is attached to it
// meanwhile, and has the changes of the environment, too. The program is ended at destruction when
// it still runs. One at a time. Throws std::system_error where the platform fails, and then leaves
// no program behind.
class ConsoleProgram {
 public:
  ConsoleProgram(const std::vector<std::string>& arguments,
                 const std::vector<EnvironmentChange>& environment);
  ConsoleProgram(const ConsoleProgram&) = delete;
  ConsoleProgram& operator=(const ConsoleProgram&) = delete;
  ~ConsoleProgram();

  // Returns whether the text came on standard output, within a deadline.
  [[nodiscard]] bool awaitOutput(const std::string& text);
  // Presses Ctrl-C.
  void interrupt() const;
  // Waits for the end and returns what it printed and how it ended.
  [[nodiscard]] ProgramResult finish();

 private:
  struct Pipe {
    platform::Handle out;
    platform::Handle in;
  };
  struct End {
    void operator()(void* process) const;
  };
  static Pipe makePipe();
  static void readInto(std::string& text, const Pipe& pipe);
  void read();
  [[nodiscard]] bool hasEnded() const;

  Pipe m_output;
  Pipe m_errors;
  std::unique_ptr<void, End> m_process;
  ProgramResult m_result;
};

}  // namespace test

#endif  // ORVEX_TESTS_CLI_WINDOWS_CONSOLEPROGRAM_H_
