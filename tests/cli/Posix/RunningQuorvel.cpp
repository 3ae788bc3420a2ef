#include "tests/cli/Posix/RunningQuorvel.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

#include "tests/support/Posix/Processes.h"
#include "tests/support/WaitUntil.h"

namespace test {
namespace {

constexpr int kPollMilliseconds = 100;

int demand(int result, const char* what) {
  if (result < 0) {
    throw std::system_error(errno, std::generic_category(), what);
  }
  return result;
}

// The reading end stays with the test, the other one goes to the program.
struct Ends {
  int reader = -1;
  int writer = -1;
};

Ends makePipe() {
  std::array<int, 2> ends{};
  demand(pipe2(ends.data(), O_CLOEXEC), "pipe2");
  return {ends[0], ends[1]};
}

Ends makeOutput(OutputTo output) {
  Ends ends;
  switch (output) {
    case OutputTo::Pipe:
      return makePipe();
    case OutputTo::Terminal:
      demand(openpty(&ends.reader, &ends.writer, nullptr, nullptr, nullptr), "openpty");
      demand(fcntl(ends.reader, F_SETFD, FD_CLOEXEC), "fcntl");
      demand(fcntl(ends.writer, F_SETFD, FD_CLOEXEC), "fcntl");
      return ends;
    case OutputTo::Full:
      ends.writer = demand(open("/dev/full", O_WRONLY | O_CLOEXEC), "open");
      return ends;
    case OutputTo::Nowhere:
      break;
  }
  return ends;
}

void closeEnd(int& end) {
  if (end >= 0) {
    close(end);
    end = -1;
  }
}

}  // namespace

RunningQuorvel::RunningQuorvel(const std::vector<std::string>& arguments, OutputTo output,
                               const std::vector<EnvironmentChange>& environment,
                               const std::string& program) {
  const std::filesystem::path path = programBeside(program);
  Ends out = makeOutput(output);
  Ends err = makePipe();
  m_process = forkProcess();
  if (m_process == 0) {
    if (out.writer >= 0) {
      dup2(out.writer, STDOUT_FILENO);
    } else {
      close(STDOUT_FILENO);
    }
    dup2(err.writer, STDERR_FILENO);
    becomeProgram(path, arguments, environment);
  }
  closeEnd(out.writer);
  closeEnd(err.writer);
  m_output = out.reader;
  m_errors = err.reader;
}

RunningQuorvel::~RunningQuorvel() {
  if (m_process > 0) {
    kill(m_process, SIGKILL);
    waitpid(m_process, nullptr, 0);
  }
  closeEnd(m_output);
  closeEnd(m_errors);
}

bool RunningQuorvel::awaitOutput(const std::string& text) {
  return await(&ProgramResult::output, text);
}

bool RunningQuorvel::awaitErrors(const std::string& text) {
  return await(&ProgramResult::errors, text);
}

void RunningQuorvel::signal(int number) const {
  demand(kill(m_process, number), "kill");
}

std::filesystem::path RunningQuorvel::openFile(int number) const {
  std::error_code error;
  return std::filesystem::read_symlink(
      "/proc/" + std::to_string(m_process) + "/fd/" + std::to_string(number), error);
}

void RunningQuorvel::abandonOutput() {
  closeEnd(m_output);
}

ProgramResult RunningQuorvel::finish() {
  const auto deadline = std::chrono::steady_clock::now() + kDeadline;
  while (read(kPollMilliseconds)) {
    if (std::chrono::steady_clock::now() >= deadline) {
      kill(m_process, SIGKILL);
    }
  }
  int status = 0;
  demand(waitpid(m_process, &status, 0), "waitpid");
  m_process = 0;
  m_result.exitStatus = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
  return m_result;
}

// A terminal whose other side is gone answers with an error, a pipe with its end.
bool RunningQuorvel::read(int milliseconds) {
  std::array<pollfd, 2> sources{{{m_output, POLLIN, 0}, {m_errors, POLLIN, 0}}};
  if (poll(sources.data(), sources.size(), milliseconds) < 0 && errno != EINTR) {
    throw std::system_error(errno, std::generic_category(), "poll");
  }
  for (const pollfd& source : sources) {
    if (source.fd < 0 || source.revents == 0) {
      continue;
    }
    std::array<char, 4096> buffer{};
    const ssize_t got = ::read(source.fd, buffer.data(), buffer.size());
    int& stream = source.fd == m_output ? m_output : m_errors;
    if (got > 0) {
      std::string& text = source.fd == m_output ? m_result.output : m_result.errors;
      text.append(buffer.data(), static_cast<std::size_t>(got));
    } else {
      closeEnd(stream);
    }
  }
  return m_output >= 0 || m_errors >= 0;
}

bool RunningQuorvel::await(std::string ProgramResult::*stream, const std::string& text) {
  const auto deadline = std::chrono::steady_clock::now() + kDeadline;
  while ((m_result.*stream).find(text) == std::string::npos) {
    if (!read(kPollMilliseconds) || std::chrono::steady_clock::now() >= deadline) {
      return (m_result.*stream).find(text) != std::string::npos;
    }
  }
  return true;
}

}  // namespace test
