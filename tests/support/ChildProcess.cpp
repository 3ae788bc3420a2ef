#include "tests/support/ChildProcess.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

#include "Os/Environment.h"
#include "tests/support/WaitUntil.h"

namespace test {
namespace {

constexpr int kCannotExecute = 127;
constexpr int kBodyThrew = 125;

struct Pipe {
  Pipe() {
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
      throw std::system_error(errno, std::generic_category(), "pipe2");
    }
  }
  [[nodiscard]] int out() const { return ends[0]; }
  [[nodiscard]] int in() const { return ends[1]; }

  std::array<int, 2> ends{};
};

pid_t forkProcess() {
  // What is buffered now would be written twice.
  std::fflush(nullptr);
  const pid_t process = fork();
  if (process < 0) {
    throw std::system_error(errno, std::generic_category(), "fork");
  }
  return process;
}

int awaitEnd(pid_t process) {
  int status = 0;
  while (waitpid(process, &status, 0) < 0) {
    if (errno != EINTR) {
      throw std::system_error(errno, std::generic_category(), "waitpid");
    }
  }
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

[[noreturn]] void execute(const std::filesystem::path& program,
                          const std::vector<std::string>& arguments,
                          const std::vector<EnvironmentChange>& environment) {
  for (const EnvironmentChange& change : environment) {
    if (change.value) {
      setenv(change.name.c_str(), change.value->c_str(), 1);
    } else {
      unsetenv(change.name.c_str());
    }
  }
  std::vector<std::string> texts{program.string()};
  texts.insert(texts.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  execv(program.c_str(), pointers.data());
  _exit(kCannotExecute);
}

// Reads both pipes until the program has closed them.
void collect(int output, int errors, ProgramResult& result) {
  std::array<pollfd, 2> sources{{{output, POLLIN, 0}, {errors, POLLIN, 0}}};
  while (sources[0].fd >= 0 || sources[1].fd >= 0) {
    if (poll(sources.data(), sources.size(), -1) < 0 && errno != EINTR) {
      throw std::system_error(errno, std::generic_category(), "poll");
    }
    for (pollfd& source : sources) {
      if (source.fd < 0 || source.revents == 0) {
        continue;
      }
      std::array<char, 4096> buffer{};
      const ssize_t got = read(source.fd, buffer.data(), buffer.size());
      if (got > 0) {
        std::string& text = source.fd == output ? result.output : result.errors;
        text.append(buffer.data(), static_cast<std::size_t>(got));
      } else if (got == 0) {
        close(source.fd);
        source.fd = -1;
      }
    }
  }
}

}  // namespace

std::filesystem::path programBeside(const std::string& name) {
  return std::filesystem::path(os::getProgramPath()).parent_path() / name;
}

ProgramResult runProgram(const std::filesystem::path& program,
                         const std::vector<std::string>& arguments,
                         const std::vector<EnvironmentChange>& environment) {
  const Pipe output;
  const Pipe errors;
  const pid_t process = forkProcess();
  if (process == 0) {
    dup2(output.in(), STDOUT_FILENO);
    dup2(errors.in(), STDERR_FILENO);
    execute(program, arguments, environment);
  }
  close(output.in());
  close(errors.in());
  ProgramResult result;
  collect(output.out(), errors.out(), result);
  result.exitStatus = awaitEnd(process);
  if (result.exitStatus == kCannotExecute) {
    throw std::system_error(ENOENT, std::generic_category(), program.string());
  }
  return result;
}

ChildProcess::Link::~Link() {
  close(m_in);
  close(m_out);
}

void ChildProcess::Link::tell(char mark) {
  if (write(m_out, &mark, 1) != 1) {
    throw std::system_error(errno, std::generic_category(), "write");
  }
}

bool ChildProcess::Link::await(char mark) {
  pollfd source{m_in, POLLIN, 0};
  const auto milliseconds =
      std::chrono::duration_cast<std::chrono::milliseconds>(kDeadline).count();
  int ready = 0;
  do {
    ready = poll(&source, 1, static_cast<int>(milliseconds));
  } while (ready < 0 && errno == EINTR);
  char got = 0;
  return ready == 1 && read(m_in, &got, 1) == 1 && got == mark;
}

ChildProcess::ChildProcess(const Body& body) {
  const Pipe toChild;
  const Pipe toParent;
  m_process = forkProcess();
  if (m_process != 0) {
    close(toChild.out());
    close(toParent.in());
    m_link.emplace(toParent.out(), toChild.in());
    return;
  }
  close(toChild.in());
  close(toParent.out());
  int status = kBodyThrew;
  try {
    Link parent(toChild.out(), toParent.in());
    status = body(parent);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "child process: %s\n", error.what());
  }
  _exit(status);
}

ChildProcess::~ChildProcess() {
  if (m_process != 0) {
    kill();
  }
}

void ChildProcess::kill() {
  ::kill(m_process, SIGKILL);
  wait();
}

int ChildProcess::wait() {
  const int status = awaitEnd(m_process);
  m_process = 0;
  return status;
}

}  // namespace test
