// Whether handles are open.

#ifndef ORVEX_TESTS_SUPPORT_WINDOWS_OPENHANDLES_H_
#define ORVEX_TESTS_SUPPORT_WINDOWS_OPENHANDLES_H_

#include <windows.h>

namespace test {

// Returns a handle that whoever calls has to close.
[[nodiscard]] inline HANDLE makeEvent() {
  return CreateEventA(nullptr, TRUE, FALSE, nullptr);
}

[[nodiscard]] inline bool isOpen(HANDLE handle) {
  DWORD flags = 0;
  return GetHandleInformation(handle, &flags) != FALSE;
}

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_WINDOWS_OPENHANDLES_H_
