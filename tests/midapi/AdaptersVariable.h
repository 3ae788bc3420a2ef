// The environment's ORVEX_ADAPTERS for the length of a scope.

#ifndef QUORVEL_TESTS_MIDAPI_ADAPTERSVARIABLE_H_
#define QUORVEL_TESTS_MIDAPI_ADAPTERSVARIABLE_H_

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

namespace test {

// Changes the environment of the whole process: no other thread may look at it meanwhile.
class AdaptersVariable {
 public:
  explicit AdaptersVariable(const std::filesystem::path& directory) {
    if (const char* before = std::getenv(kName)) {
      m_before = before;
    }
    ::setenv(kName, directory.c_str(), 1);
  }
  AdaptersVariable(const AdaptersVariable&) = delete;
  AdaptersVariable& operator=(const AdaptersVariable&) = delete;
  ~AdaptersVariable() {
    if (m_before) {
      ::setenv(kName, m_before->c_str(), 1);
    } else {
      ::unsetenv(kName);
    }
  }

 private:
  static constexpr const char* kName = "ORVEX_ADAPTERS";
  std::optional<std::string> m_before;
};

}  // namespace test

#endif  // QUORVEL_TESTS_MIDAPI_ADAPTERSVARIABLE_H_
