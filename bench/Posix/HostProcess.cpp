#include "bench/HostProcess.h"

#include <arpa/inet.h>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <netinet/in.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace bench {
namespace {

constexpr int kSignalStatus = 128;  // as shells count

int awaitEnd(int process) {
  int status = 0;
  while (waitpid(process, &status, 0) < 0) {
    if (errno != EINTR) {
      throw std::system_error(errno, std::generic_category(), "waitpid");
    }
  }
  return WIFSIGNALED(status) ? kSignalStatus + WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace

// The host could choose one itself, but would print it where nobody reads.
std::uint16_t findFreePort() {
  const int descriptor = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof(address);
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  const bool isFound = descriptor >= 0 && bind(descriptor, generic, size) == 0 &&
                       getsockname(descriptor, generic, &size) == 0;
  const int error = errno;
  close(descriptor);
  if (!isFound) {
    throw std::system_error(error, std::generic_category(), "no free port");
  }
  return ntohs(address.sin_port);
}

HostProcess::HostProcess(const std::filesystem::path& program,
                         const std::vector<std::string>& arguments)
    : m_process(0) {
  std::vector<std::string> texts{program.string()};
  texts.insert(texts.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  // What it prints would stand between the results.
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  const int error =
      posix_spawn(&m_process, program.c_str(), &actions, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) {
    throw std::system_error(error, std::generic_category(), program.string());
  }
}

HostProcess::~HostProcess() {
  if (m_process != 0) {
    kill(m_process, SIGKILL);
    awaitEnd(m_process);
  }
}

std::size_t HostProcess::residentKib() const {
  std::ifstream status("/proc/" + std::to_string(m_process) + "/status");
  std::string name;
  while (status >> name) {
    if (std::size_t kib = 0; name == "VmRSS:" && status >> kib) {
      return kib;
    }
  }
  throw std::runtime_error("the host is gone");
}

int HostProcess::stop() {
  kill(m_process, SIGTERM);
  const int status = awaitEnd(m_process);
  m_process = 0;
  return status;
}

}  // namespace bench
