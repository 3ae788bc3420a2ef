// For death tests: tells whether a process ended because it did not handle a signal.

#ifndef ORVEX_TESTS_CLI_ENDEDBYSIGNAL_H_
#define ORVEX_TESTS_CLI_ENDEDBYSIGNAL_H_

namespace test {

// Windows does not tell which signal it was.
class EndedBySignal {
 public:
  explicit EndedBySignal(int signal) : m_signal(signal) {}

  // Takes the status as the platform gives it to EXPECT_EXIT. Defined per platform.
  [[nodiscard]] bool operator()(int status) const;

 private:
  int m_signal;
};

}  // namespace test

#endif  // ORVEX_TESTS_CLI_ENDEDBYSIGNAL_H_
