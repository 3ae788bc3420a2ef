// What a library asks of the system about going to sleep.

#ifndef ORVEX_TESTS_SUPPORT_WINDOWS_EXECUTIONSTATES_H_
#define ORVEX_TESTS_SUPPORT_WINDOWS_EXECUTIONSTATES_H_

#include <string>
#include <vector>
#include <windows.h>

#include "tests/support/Windows/ImportPatch.h"

namespace test {

// One lives at a time, and one thread asks.
class ExecutionStates {
 public:
  explicit ExecutionStates(const std::string& library)
      : m_patch(library, "SetThreadExecutionState", &note) {
    noted().clear();
  }

  [[nodiscard]] static const std::vector<EXECUTION_STATE>& all() { return noted(); }

 private:
  static std::vector<EXECUTION_STATE>& noted() {
    static std::vector<EXECUTION_STATE> states;
    return states;
  }
  static EXECUTION_STATE WINAPI note(EXECUTION_STATE state) {
    const EXECUTION_STATE before = noted().empty() ? ES_CONTINUOUS : noted().back();
    noted().push_back(state);
    return before;
  }

  ImportPatch m_patch;
};

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_WINDOWS_EXECUTIONSTATES_H_
