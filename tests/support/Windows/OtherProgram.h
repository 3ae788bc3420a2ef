// Another program of the machine that takes the flash lock: a second handle of the semaphore, which
// must be there.

#ifndef ORVEX_TESTS_SUPPORT_WINDOWS_OTHERPROGRAM_H_
#define ORVEX_TESTS_SUPPORT_WINDOWS_OTHERPROGRAM_H_

#include <chrono>
#include <windows.h>

#include "platform/Windows/Handle.h"
#include "tests/support/WaitUntil.h"

namespace test {

class OtherProgram {
 public:
  OtherProgram()
      : m_semaphore(OpenSemaphoreA(SEMAPHORE_ALL_ACCESS, FALSE, "Global\\RavlApplySemaphore")) {}
  OtherProgram(const OtherProgram&) = delete;
  OtherProgram& operator=(const OtherProgram&) = delete;
  ~OtherProgram() { unlock(); }

  [[nodiscard]] bool knowsSemaphore() const { return m_semaphore.isOpen(); }
  // Waits for its turn. Returns false when the semaphore is not to be had.
  [[nodiscard]] bool lock() { return waitFor(kDeadline); }
  [[nodiscard]] bool tryLock() { return waitFor(std::chrono::milliseconds(0)); }
  // Gives back what it holds.
  void unlock() {
    if (m_isHolding) {
      ReleaseSemaphore(m_semaphore.get(), 1, nullptr);
      m_isHolding = false;
    }
  }

 private:
  bool waitFor(std::chrono::milliseconds limit) {
    m_isHolding =
        WaitForSingleObject(m_semaphore.get(), static_cast<DWORD>(limit.count())) == WAIT_OBJECT_0;
    return m_isHolding;
  }

  platform::Handle m_semaphore;
  bool m_isHolding = false;
};

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_WINDOWS_OTHERPROGRAM_H_
