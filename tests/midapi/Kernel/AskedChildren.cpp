#include "tests/midapi/Kernel/AskedChildren.h"

#include <algorithm>
#include <charconv>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <sys/prctl.h>
#include <unistd.h>

#include "tests/support/Posix/Processes.h"

namespace test {
namespace {

namespace fs = std::filesystem;

std::optional<pid_t> readProcess(const std::string& name) {
  pid_t process = 0;
  const auto [end, fault] = std::from_chars(name.data(), name.data() + name.size(), process);
  return fault == std::errc() && end == name.data() + name.size() ? std::optional(process)
                                                                  : std::nullopt;
}

}  // namespace

AskedChildren::AskedChildren() {
  ::prctl(PR_SET_CHILD_SUBREAPER, 1);
}

AskedChildren::~AskedChildren() {
  for (const pid_t child : all()) {
    ::kill(child, SIGKILL);
    static_cast<void>(awaitEnd(child));
  }
  ::prctl(PR_SET_CHILD_SUBREAPER, 0);
}

std::vector<pid_t> AskedChildren::all() const {
  std::vector<pid_t> children;
  for (const fs::directory_entry& entry : fs::directory_iterator("/proc")) {
    const auto process = readProcess(entry.path().filename().string());
    if (process && statusOf(*process, "PPid") == std::to_string(::getpid())) {
      children.push_back(*process);
    }
  }
  return children;
}

int AskedChildren::awaitOne() const {
  const std::vector<pid_t> children = all();
  return children.empty() ? -1 : awaitEnd(children.front());
}

std::string statusOf(pid_t process, const std::string& field) {
  std::ifstream status("/proc/" + std::to_string(process) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(field + ":")) {
      return line.substr(line.find_first_not_of(": \t", field.size()));
    }
  }
  return {};
}

std::size_t countOpenFiles() {
  return static_cast<std::size_t>(
      std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator()));
}

}  // namespace test
