// Whether handles are open, and how many the process has.

#ifndef ORVEX_TESTS_SUPPORT_WINDOWS_OPENHANDLES_H_
#define ORVEX_TESTS_SUPPORT_WINDOWS_OPENHANDLES_H_

#include <cstdint>
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

// The system's own count is 0 under an emulation.
[[nodiscard]] inline int countHandles() {
  constexpr std::uintptr_t kStep = 4;  // from one handle to the next
  constexpr std::uintptr_t kEnd = kStep * 4096;
  int count = 0;
  for (std::uintptr_t value = kStep; value < kEnd; value += kStep) {
    count += isOpen(reinterpret_cast<HANDLE>(value)) ? 1 : 0;
  }
  return count;
}

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_WINDOWS_OPENHANDLES_H_
