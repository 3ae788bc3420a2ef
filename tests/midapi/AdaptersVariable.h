// The environment's ORVEX_ADAPTERS for the length of a scope.

#ifndef ORVEX_TESTS_MIDAPI_ADAPTERSVARIABLE_H_
#define ORVEX_TESTS_MIDAPI_ADAPTERSVARIABLE_H_

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

#include "tests/support/Variables.h"

namespace test {

// Changes the environment of the whole process: no other thread may look at it meanwhile.
class AdaptersVariable {
 public:
  explicit AdaptersVariable(const std::filesystem::path& directory) {
    if (const char* before = std::getenv(kName)) {
      m_before = before;
    }
    setVariable(kName, directory.string());
  }
  AdaptersVariable(const AdaptersVariable&) = delete;
  AdaptersVariable& operator=(const AdaptersVariable&) = delete;
  ~AdaptersVariable() {
    if (m_before) {
      setVariable(kName, *m_before);
    } else {
      unsetVariable(kName);
    }
  }

 private:
  static constexpr const char* kName = "ORVEX_ADAPTERS";
  std::optional<std::string> m_before;
};

}  // namespace test

#endif  // ORVEX_TESTS_MIDAPI_ADAPTERSVARIABLE_H_
