// Keeps the system from asking whoever sits at the screen about a damaged library or an empty drive
// while this object lives: the call fails instead. For the calling thread only.

#ifndef ORVEX_PLATFORM_WINDOWS_NOERRORDIALOGS_H_
#define ORVEX_PLATFORM_WINDOWS_NOERRORDIALOGS_H_

#include <windows.h>

namespace platform {

class NoErrorDialogs {
 public:
  // A refusal is no reason to do without what somebody might be asked about.
  NoErrorDialogs()
      : m_isSet(SetThreadErrorMode(
                    GetThreadErrorMode() | SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX,
                    &m_before) != FALSE) {}
  NoErrorDialogs(const NoErrorDialogs&) = delete;
  NoErrorDialogs& operator=(const NoErrorDialogs&) = delete;
  ~NoErrorDialogs() {
    if (m_isSet) {
      // The system refuses modes that it does not know; it had this one.
      static_cast<void>(SetThreadErrorMode(m_before, nullptr));
    }
  }

 private:
  DWORD m_before = 0;
  const bool m_isSet;
};

}  // namespace platform

#endif  // ORVEX_PLATFORM_WINDOWS_NOERRORDIALOGS_H_
