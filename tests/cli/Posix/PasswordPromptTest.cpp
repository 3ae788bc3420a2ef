// The prompt on a terminal of the test's own.

#include <array>
#include <csignal>
#include <gmock/gmock.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include "cli/Context.h"
#include "cli/Posix/PasswordPrompt.h"
#include "client/Fault.h"

namespace {

using testing::HasSubstr;
using testing::Not;

constexpr int kMilliseconds = 30'000;

// A child process whose controlling terminal is this, and which asks for a password there, unless
// it has another program. ask() returns 0 for "secret", 1 for another one, 2 for a fault, 3 where
// there is no terminal.
class PromptedChild {
 public:
  static int ask() {
    try {
      const std::optional<std::string> password = cli::askPassword("Password: ");
      return !password ? 3 : (*password == "secret" ? 0 : 1);
    } catch (const client::Fault&) {
      return 2;
    }
  }

  explicit PromptedChild(int (*program)() = ask) {
    m_process = forkpty(&m_terminal, nullptr, nullptr, nullptr);
    if (m_process == 0) {
      // Whoever started the test may have it ignored.
      std::signal(SIGINT, SIG_DFL);
      _exit(program());
    }
  }
  PromptedChild(const PromptedChild&) = delete;
  PromptedChild& operator=(const PromptedChild&) = delete;
  ~PromptedChild() {
    if (m_process > 0) {
      kill(m_process, SIGKILL);
      waitpid(m_process, nullptr, 0);
    }
    close(m_terminal);
  }

  void type(const std::string& text) const {
    ASSERT_EQ(write(m_terminal, text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }

  // Returns whether the text appears on the terminal.
  bool await(const std::string& text) {
    while (m_output.find(text) == std::string::npos && read()) {
    }
    return m_output.find(text) != std::string::npos;
  }

  [[nodiscard]] bool isShown() const {
    termios state{};
    tcgetattr(m_terminal, &state);
    return (state.c_lflag & static_cast<tcflag_t>(ECHO)) != 0;
  }

  // Waits for the end; returns the exit status, 128 and the signal's number for a signal.
  int finish() {
    while (read()) {
    }
    kill(m_process, SIGKILL);  // has no effect on one that has ended
    int status = 0;
    waitpid(m_process, &status, 0);
    m_process = 0;
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
  }

  [[nodiscard]] pid_t process() const { return m_process; }
  [[nodiscard]] const std::string& output() const { return m_output; }

 private:
  bool read() {
    pollfd source{m_terminal, POLLIN, 0};
    if (poll(&source, 1, kMilliseconds) <= 0) {
      return false;
    }
    std::array<char, 256> buffer{};
    const ssize_t count = ::read(m_terminal, buffer.data(), buffer.size());
    if (count > 0) {
      m_output.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return count > 0;
  }

  int m_terminal = -1;
  pid_t m_process = 0;
  std::string m_output;
};

TEST(PasswordPrompt, TakesALineThatIsNotShown) {
  PromptedChild child;
  ASSERT_TRUE(child.await("Password: "));
  EXPECT_FALSE(child.isShown());
  child.type("secret\n");
  EXPECT_EQ(child.finish(), 0);
  EXPECT_THAT(child.output(), Not(HasSubstr("secret")));
}

TEST(PasswordPrompt, EndsByAnInterrupt) {
  PromptedChild child;
  ASSERT_TRUE(child.await("Password: "));
  child.type("sec\x03");
  EXPECT_EQ(child.finish(), 128 + SIGINT);
  EXPECT_TRUE(child.isShown());
}

// The process group of the child is nobody's job, so that a stop does not last.
TEST(PasswordPrompt, AsksAnewAfterAStop) {
  PromptedChild child;
  ASSERT_TRUE(child.await("Password: "));
  kill(child.process(), SIGTSTP);
  ASSERT_TRUE(child.await("\nPassword: "));
  child.type("secret\n");
  EXPECT_EQ(child.finish(), 0);
}

// Asks in a job of its own, in the background of the terminal, as a shell starts it for "&". What
// it tells on the terminal is "stopped" once the job is; a word that is typed then brings the job
// to the front.
int askInBackground(bool isStopIgnored) {
  const pid_t job = fork();
  if (job == 0) {
    setpgid(0, 0);
    std::signal(SIGTTIN, isStopIgnored ? SIG_IGN : SIG_DFL);
    _exit(PromptedChild::ask());
  }
  setpgid(job, job);
  int status = 0;
  waitpid(job, &status, WUNTRACED);
  if (WIFSTOPPED(status) && WSTOPSIG(status) == SIGTTIN) {
    static_cast<void>(!write(STDOUT_FILENO, "stopped\n", 8));
    char character = 0;
    while (read(STDIN_FILENO, &character, 1) == 1 && character != '\n') {
    }
    tcsetpgrp(STDIN_FILENO, job);
    kill(job, SIGCONT);
    waitpid(job, &status, 0);
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 4;
}

TEST(PasswordPrompt, IsStoppedInTheBackground) {
  PromptedChild child([] { return askInBackground(false); });
  ASSERT_TRUE(child.await("stopped"));
  EXPECT_TRUE(child.isShown());
  EXPECT_THAT(child.output(), Not(HasSubstr("Password")));
  child.type("fg\n");
  ASSERT_TRUE(child.await("Password: "));
  EXPECT_FALSE(child.isShown());
  child.type("secret\n");
  EXPECT_EQ(child.finish(), 0);
}

TEST(PasswordPrompt, IsRefusedInTheBackgroundOfNoShell) {
  PromptedChild child([] { return askInBackground(true); });
  EXPECT_EQ(child.finish(), 2);
  EXPECT_THAT(child.output(), Not(HasSubstr("Password")));
}

TEST(PasswordPrompt, GivesUpWhereTheInputEnds) {
  PromptedChild child;
  ASSERT_TRUE(child.await("Password: "));
  child.type("\x04");
  EXPECT_EQ(child.finish(), 2);
}

}  // namespace
