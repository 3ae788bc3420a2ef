#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

#include "Os/Environment.h"

namespace os {

void setEnvironment(const std::string& name, const std::string& value) {
  setenv(name.c_str(), value.c_str(), 1);
}

std::string getProgramPath() {
  char path[PATH_MAX];
  const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
  return length > 0 ? std::string(path, static_cast<std::size_t>(length)) : std::string();
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
