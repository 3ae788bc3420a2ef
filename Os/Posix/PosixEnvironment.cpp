#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

#include "Os/Environment.h"
#include "Utils/Exception.h"

namespace os {

std::string getMachineName() {
  std::array<char, HOST_NAME_MAX + 1> name{};
  // What a machine has that nobody has named.
  constexpr const char* kNone = "(none)";
  if (gethostname(name.data(), name.size()) != 0 || std::strcmp(name.data(), kNone) == 0) {
    return {};
  }
  return name.data();
}

void setEnvironment(const std::string& name, const std::string& value) {
  if (setenv(name.c_str(), value.c_str(), 1) != 0) {
    throw utils::Exception("The environment variable '%s' could not be set: error %d", name.c_str(),
                           errno);
  }
}

void demandExactArguments() {}

std::filesystem::path getProgramPath() {
  std::error_code error;
  std::filesystem::path path = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) {
    throw utils::Exception("The path of the running program is not known: %s",
                           error.message().c_str());
  }
  return path;
}

// A new descriptor is the lowest free one, so each missing stream gets its own, opened the wrong
// way round for its use.
void reserveStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) < 0) {
      [[maybe_unused]] const int opened =
          open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
  }
}

bool isOutputTerminal() {
  return isatty(STDOUT_FILENO) == 1;
}

}  // namespace os
