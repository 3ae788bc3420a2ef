// Copies of the test program, for what only a second process shows.

#ifndef ORVEX_TESTS_SUPPORT_POSIX_CHILDPROCESS_H_
#define ORVEX_TESTS_SUPPORT_POSIX_CHILDPROCESS_H_

#include <functional>
#include <optional>
#include <sys/types.h>

namespace test {

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
  // Waits for the child's end. Returns its exit status: 128 and the signal's number when a signal
  // ended it.
  int wait();

 private:
  std::optional<Link> m_link;
  pid_t m_process = 0;  // 0 once the child is gone
};

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_POSIX_CHILDPROCESS_H_
