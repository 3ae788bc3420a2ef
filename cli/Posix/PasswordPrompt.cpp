#include "cli/Posix/PasswordPrompt.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <iterator>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include "client/Fault.h"

namespace cli {
namespace {

constexpr int kHeldSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP, SIGTTIN, SIGTTOU};

std::atomic<int> s_signal{0};

// While it lives, a signal is only noted, and only while wait() runs, so that none is missed.
class HeldSignals {
 public:
  HeldSignals() {
    s_signal = 0;
    struct sigaction action {};
    action.sa_handler = [](int signal) { s_signal = signal; };
    sigemptyset(&action.sa_mask);
    sigset_t held;
    sigemptyset(&held);
    for (const int signal : kHeldSignals) {
      sigaddset(&held, signal);
    }
    pthread_sigmask(SIG_BLOCK, &held, &m_previousMask);
    for (std::size_t i = 0; i < std::size(kHeldSignals); ++i) {
      sigaction(kHeldSignals[i], &action, &m_previous[i]);
    }
  }
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;
  ~HeldSignals() {
    for (std::size_t i = 0; i < std::size(kHeldSignals); ++i) {
      sigaction(kHeldSignals[i], &m_previous[i], nullptr);
    }
    pthread_sigmask(SIG_SETMASK, &m_previousMask, nullptr);
  }

  // Waits until there is something to read. Returns the signal that came instead, 0 for none.
  int wait(int descriptor) const {
    pollfd source{descriptor, POLLIN, 0};
    while (s_signal == 0 && ppoll(&source, 1, nullptr, &m_previousMask) < 0 && errno == EINTR) {
    }
    return s_signal;
  }

 private:
  sigset_t m_previousMask{};
  struct sigaction m_previous[std::size(kHeldSignals)]{};
};

class Terminal {
 public:
  Terminal() : m_descriptor(open("/dev/tty", O_RDWR | O_CLOEXEC)) {}
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;
  ~Terminal() {
    if (m_descriptor >= 0) {
      close(m_descriptor);
    }
  }

  [[nodiscard]] bool isOpen() const { return m_descriptor >= 0; }
  // Returns whether another job than this one has the terminal now.
  [[nodiscard]] bool isTaken() const { return tcgetpgrp(m_descriptor) != getpgrp(); }
  [[nodiscard]] int descriptor() const { return m_descriptor; }

  // A terminal that takes no output shows no prompt; the answer counts all the same.
  void print(const std::string& text) const {
    static_cast<void>(!write(m_descriptor, text.data(), text.size()));
  }

 private:
  const int m_descriptor;
};

// While it lives, the terminal does not show what is typed.
class HiddenInput {
 public:
  explicit HiddenInput(const Terminal& terminal) : m_descriptor(terminal.descriptor()) {
    if (tcgetattr(m_descriptor, &m_previous) != 0) {
      throw client::Fault(std::string("the terminal cannot be used for the password: ") +
                          std::strerror(errno));
    }
    termios hidden = m_previous;
    hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHOE | ECHOK);
    hidden.c_lflag |= static_cast<tcflag_t>(ECHONL | ICANON | ISIG);
    tcsetattr(m_descriptor, TCSAFLUSH, &hidden);
  }
  HiddenInput(const HiddenInput&) = delete;
  HiddenInput& operator=(const HiddenInput&) = delete;
  ~HiddenInput() { tcsetattr(m_descriptor, TCSAFLUSH, &m_previous); }

 private:
  const int m_descriptor;
  termios m_previous{};
};

// What one attempt to read a line came to: the line, or the signal that it gave way to.
struct Attempt {
  std::string line;
  int signal = 0;
};

Attempt readLine(const Terminal& terminal, const HeldSignals& signals) {
  Attempt attempt;
  for (;;) {
    attempt.signal = signals.wait(terminal.descriptor());
    if (attempt.signal != 0) {
      return attempt;
    }
    char character = 0;
    if (read(terminal.descriptor(), &character, 1) != 1) {
      throw client::Fault("no password was typed");
    }
    if (character == '\n') {
      return attempt;
    }
    attempt.line += character;
  }
}

// Stops as any job does that reads from its terminal in the background, until the shell brings it
// to the front. Else the shell would find its terminal without an echo, and its user would type the
// password into it.
void awaitTerminal(const Terminal& terminal) {
  if (terminal.isTaken()) {
    static_cast<void>(raise(SIGTTIN));
  }
  if (terminal.isTaken()) {
    throw client::Fault(
        "the password cannot be asked for in the background; run the command in the foreground, "
        "or give the password by --password-file, or by the environment variable QUORVEL_PASSWORD",
        client::Fault::Kind::Usage);
  }
}

Attempt ask(const Terminal& terminal, const std::string& prompt) {
  const HeldSignals signals;
  const HiddenInput hidden(terminal);
  terminal.print(prompt);
  return readLine(terminal, signals);
}

}  // namespace

std::optional<std::string> askPassword(const std::string& prompt) {
  const Terminal terminal;
  if (!terminal.isOpen()) {
    return std::nullopt;
  }
  for (;;) {
    awaitTerminal(terminal);
    Attempt attempt = ask(terminal, prompt);
    if (attempt.signal == 0) {
      return std::move(attempt.line);
    }
    terminal.print("\n");
    // Comes back after a stop, and from a signal that the process ignores.
    static_cast<void>(raise(attempt.signal));
  }
}

}  // namespace cli
