// An event that a program started by this one knows by its name.

#ifndef ORVEX_TESTS_OS_WINDOWS_NAMEDEVENT_H_
#define ORVEX_TESTS_OS_WINDOWS_NAMEDEVENT_H_

#include <chrono>
#include <string>
#include <windows.h>

#include "platform/Windows/Handle.h"
#include "tests/support/WaitUntil.h"

namespace test {

class NamedEvent {
 public:
  explicit NamedEvent(const std::string& purpose)
      : m_name("quorvel-test-" + std::to_string(GetCurrentProcessId()) + purpose),
        m_event(CreateEventA(nullptr, TRUE, FALSE, m_name.c_str())) {}
  NamedEvent(const NamedEvent&) = delete;
  NamedEvent& operator=(const NamedEvent&) = delete;

  [[nodiscard]] const std::string& name() const { return m_name; }
  void set() { SetEvent(m_event.get()); }
  [[nodiscard]] bool await() const {
    const std::chrono::milliseconds limit(kDeadline);
    return WaitForSingleObject(m_event.get(), static_cast<DWORD>(limit.count())) == WAIT_OBJECT_0;
  }

 private:
  const std::string m_name;
  const platform::Handle m_event;
};

}  // namespace test

#endif  // ORVEX_TESTS_OS_WINDOWS_NAMEDEVENT_H_
