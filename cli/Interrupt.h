// Holds interrupts off while something runs that must not be left half done.
//
// While a guard lives, the signals that ask a process to end (interrupt, terminate; hang-up and
// break where the platform has them) are only noted, and a reader that goes away does not end the
// process. So are, where they are held too, the signals by which a terminal stops a process. One
// guard at a time.

#ifndef ORVEX_CLI_INTERRUPT_H_
#define ORVEX_CLI_INTERRUPT_H_

#include <vector>

namespace cli {

// What becomes of the terminal's stop (Ctrl-Z).
enum class Stops { Let, Held };

class InterruptGuard {
 public:
  explicit InterruptGuard(Stops stops = Stops::Let);
  InterruptGuard(const InterruptGuard&) = delete;
  InterruptGuard& operator=(const InterruptGuard&) = delete;
  // Gives the signals back to whoever had them.
  ~InterruptGuard();

  // Returns true when the process was asked to end since the last call.
  [[nodiscard]] bool takeInterrupt();

  // Returns true when the process was asked to stop since the last call.
  [[nodiscard]] bool takeStop();

  // Gives the signals back and does what the last noted one, taken or not, asks for: ends the
  // process. Returns when there was none.
  void yieldToInterrupt();

 private:
  using Handler = void (*)(int);
  struct Previous {
    int signal;
    Handler handler;
  };

  void hold(int signal, Handler handler);
  void release();

  std::vector<Previous> m_previous;
};

}  // namespace cli

#endif  // ORVEX_CLI_INTERRUPT_H_
