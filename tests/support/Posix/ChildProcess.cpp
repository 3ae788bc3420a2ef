#include "tests/support/Posix/ChildProcess.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <exception>
#include <poll.h>
#include <system_error>
#include <unistd.h>

#include "tests/support/Posix/Processes.h"
#include "tests/support/WaitUntil.h"

namespace test {
namespace {

constexpr int kBodyThrew = 125;

}  // namespace

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
