#include "cli/Interrupt.h"

#include <atomic>
#include <csignal>

#include "cli/ConsoleText.h"

namespace cli {
namespace {

// Which of these a platform has is told by its own definitions.
constexpr int kEndingSignals[] = {
    SIGINT,
    SIGTERM,
#ifdef SIGHUP
    SIGHUP,
#endif
#ifdef SIGBREAK
    SIGBREAK,
#endif
};

// Atomic, since a platform may deliver a signal on a thread of its own.
std::atomic<int> s_lastSignal{0};
std::atomic<bool> s_isNew{false};
std::atomic<bool> s_isStopNew{false};
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

}  // namespace

extern "C" {
static void noteSignal(int signal) {
  s_lastSignal = signal;
  s_isNew = true;
  // A platform may fall back to the default when it delivers a signal.
  std::signal(signal, noteSignal);
}

#ifdef SIGTSTP
static void noteStop(int /*signal*/) {
  s_isStopNew = true;
}
#endif
}

InterruptGuard::InterruptGuard(Stops stops) {
  s_lastSignal = 0;
  s_isNew = false;
  s_isStopNew = false;
  for (const int signal : kEndingSignals) {
    hold(signal, noteSignal);
  }
#ifdef SIGPIPE
  hold(SIGPIPE, SIG_IGN);
#endif
#ifdef SIGTSTP
  if (stops == Stops::Held) {
    hold(SIGTSTP, noteStop);
    // Output to a terminal that lets background jobs write nothing.
    hold(SIGTTOU, SIG_IGN);
  }
#else
  static_cast<void>(stops);
#endif
  // Behind the handlers: an interrupt that comes between ends the program, which gives it back.
  keepConsoleOnInterrupt(true);
}

InterruptGuard::~InterruptGuard() {
  release();
}

bool InterruptGuard::takeInterrupt() {
  return s_isNew.exchange(false);
}

bool InterruptGuard::takeStop() {
  return s_isStopNew.exchange(false);
}

void InterruptGuard::yieldToInterrupt() {
  release();
  if (s_lastSignal != 0) {
    // The signal that a program raises itself asks nobody else first.
    giveConsoleBack();
    std::raise(s_lastSignal);
  }
}

// A signal that the process was started to ignore (nohup, a shell's background job) stays ignored.
void InterruptGuard::hold(int signal, Handler handler) {
  const Handler previous = std::signal(signal, handler);
  if (previous == SIG_ERR) {
    return;
  }
  if (previous == SIG_IGN) {
    std::signal(signal, SIG_IGN);
    return;
  }
  m_previous.push_back({signal, previous});
}

void InterruptGuard::release() {
  keepConsoleOnInterrupt(false);
  for (const Previous& previous : m_previous) {
    std::signal(previous.signal, previous.handler);
  }
  m_previous.clear();
}

}  // namespace cli
