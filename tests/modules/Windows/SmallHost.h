// What a host asks of the agents, by the core library alone: for programs and modules that are
// linked with nothing else of the project.

#ifndef ORVEX_TESTS_MODULES_WINDOWS_SMALLHOST_H_
#define ORVEX_TESTS_MODULES_WINDOWS_SMALLHOST_H_

#include <optional>
#include <string>

namespace test {

struct Installation {
  unsigned answer = 0;             // of InstallFromURI
  std::optional<std::string> job;  // its object path
};

// Installs the image in the first port.
[[nodiscard]] Installation install(const std::string& uri);

// Waits until the job is completed or has failed. Returns "state 7, error ''".
[[nodiscard]] std::string awaitEnd(const std::string& job);

}  // namespace test

#endif  // ORVEX_TESTS_MODULES_WINDOWS_SMALLHOST_H_
