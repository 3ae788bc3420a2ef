// Second processes, for what only a second process shows.

#ifndef ORVEX_TESTS_SUPPORT_CHILDPROCESS_H_
#define ORVEX_TESTS_SUPPORT_CHILDPROCESS_H_

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace test {

struct ProgramResult {
  int exitStatus = 0;  // 128 and the signal's number for a program that a signal ended
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

// Runs a program to its end. Throws std::system_error when it cannot be started.
[[nodiscard]] ProgramResult runProgram(const std::filesystem::path& program,
                                       const std::vector<std::string>& arguments,
                                       const std::vector<EnvironmentChange>& environment = {});

// A copy of the test program that runs a function of the test. Made while the test has one thread.
// A child that still runs at destruction is killed.
class ChildProcess {
 public:
  // One end of the two pipes between parent and child; each passes single characters.
  class Link {
   public:
    Link(int in, int out) : m_in(in), m_out(out) {}
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;
    ~Link();

    void tell(char mark);
    // Returns whether the next mark from the other side, within a deadline, is this one.
    [[nodiscard]] bool await(char mark);

   private:
    int m_in;
    int m_out;
  };

  // The child's exit status is what the body returns, 125 when that throws. The body reports by its
  // result and through the link, since expectations in it reach nobody.
  using Body = std::function<int(Link& parent)>;

  explicit ChildProcess(const Body& body);
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess();

  [[nodiscard]] Link& link() { return *m_link; }
  // Ends the child in the hard way, and returns when it is gone.
  void kill();
  // Waits for the child's end. Returns its exit status, as ProgramResult has it.
  int wait();

 private:
  std::optional<Link> m_link;
  pid_t m_process = 0;  // 0 once the child is gone
};

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_CHILDPROCESS_H_
