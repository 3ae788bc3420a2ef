#include "tests/modules/VirtualMachine.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sstream>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace test {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr const char* kEmulator = "qemu-system-x86_64";
constexpr std::chrono::seconds kBootTime{10};

[[noreturn]] void execute(const fs::path& emulator, const fs::path& rom, int output) {
  const int nothing = open("/dev/null", O_RDWR);
  dup2(nothing, STDIN_FILENO);
  dup2(output, STDOUT_FILENO);
  dup2(nothing, STDERR_FILENO);
  // disable-legacy: the card has the ID 1af4:1041 then, which its ROM is for.
  std::vector<std::string> texts{
      emulator.string(), "-accel",     "tcg",
      "-nodefaults",     "-nographic", "-serial",
      "stdio",           "-device",    "virtio-net-pci,disable-legacy=on,romfile=" + rom.string()};
  std::vector<char*> arguments;
  for (std::string& text : texts) {
    arguments.push_back(text.data());
  }
  arguments.push_back(nullptr);
  execv(emulator.c_str(), arguments.data());
  _exit(127);
}

}  // namespace

std::optional<fs::path> VirtualMachine::findEmulator() {
  const char* const path = std::getenv("PATH");
  std::istringstream directories(path != nullptr ? path : "/usr/bin");
  for (std::string directory; std::getline(directories, directory, ':');) {
    const fs::path candidate = fs::path(directory) / kEmulator;
    if (access(candidate.c_str(), X_OK) == 0) {
      return candidate;
    }
  }
  return std::nullopt;
}

VirtualMachine::VirtualMachine(const fs::path& emulator, const fs::path& rom) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "pipe2");
  }
  m_process = fork();
  if (m_process == 0) {
    execute(emulator, rom, ends[1]);
  }
  close(ends[1]);
  m_output = ends[0];
  if (m_process < 0) {
    close(m_output);
    throw std::system_error(errno, std::generic_category(), "fork");
  }
}

VirtualMachine::~VirtualMachine() {
  kill(m_process, SIGKILL);
  waitpid(m_process, nullptr, 0);
  close(m_output);
}

bool VirtualMachine::shows(const std::string& text) {
  const auto deadline = Clock::now() + kBootTime;
  while (m_console.find(text) == std::string::npos) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd source{m_output, POLLIN, 0};
    if (left <= 0 || poll(&source, 1, static_cast<int>(left)) == 0) {
      return false;
    }
    std::array<char, 4096> buffer{};
    const ssize_t got = read(m_output, buffer.data(), buffer.size());
    if (got == 0 || (got < 0 && errno != EINTR)) {
      return false;
    }
    m_console.append(buffer.data(), got > 0 ? static_cast<std::size_t>(got) : 0);
  }
  return true;
}

}  // namespace test
