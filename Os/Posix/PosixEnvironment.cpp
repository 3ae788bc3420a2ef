#include <climits>
#include <cstdlib>
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

bool isOutputTerminal() {
  return isatty(STDOUT_FILENO) == 1;
}

}  // namespace os
