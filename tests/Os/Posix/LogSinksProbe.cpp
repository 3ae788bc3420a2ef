// Shows what the platform's sinks hand to the system log: its functions are replaced by ones that
// print their arguments on standard output. Logs one debug and one error entry.

#include <cstdarg>
#include <cstdio>
#include <syslog.h>

#include "Utils/Log.h"

// The library looks for these in the program first.
#pragma GCC visibility push(default)
extern "C" {

void openlog(const char* ident, int option, int facility) {
  std::printf("open '%s' %d %s\n", ident, option, facility == LOG_USER ? "user" : "other");
}

void syslog(int priority, const char* text, ...) {
  const char* level = "other";
  if (priority == (LOG_USER | LOG_ERR)) {
    level = "error";
  } else if (priority == (LOG_USER | LOG_DEBUG)) {
    level = "debug";
  }
  std::printf("%s ", level);
  va_list arguments;
  va_start(arguments, text);
  std::vprintf(text, arguments);
  va_end(arguments);
}

void closelog() {
  std::printf("close\n");
}

}  // extern "C"
#pragma GCC visibility pop

int main() {
  constexpr utils::LogSource kLog{"Probe"};
  utils::logDebug(kLog, {"probe", 1}, "%s", "d %d%%");
  utils::logError(kLog, {"probe", 2}, "%s", "e %n");
  return 0;
}
