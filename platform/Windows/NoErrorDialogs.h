// Keeps the system from asking whoever sits at the screen about a damaged library or an empty drive
// while this object lives: the call fails instead. For the calling thread only.

#ifndef ORVEX_PLATFORM_WINDOWS_NOERRORDIALOGS_H_
#define ORVEX_PLATFORM_WINDOWS_NOERRORDIALOGS_H_

#include <windows.h>

namespace platform {

class NoErrorDialogs {
 public:
  NoErrorDialogs() {
    SetThreadErrorMode(GetThreadErrorMode() | SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX,
                       &m_before);
  }
  NoErrorDialogs(const NoErrorDialogs&) = delete;
  NoErrorDialogs& operator=(const NoErrorDialogs&) = delete;
  ~NoErrorDialogs() { SetThreadErrorMode(m_before, nullptr); }

 private:
  DWORD m_before = 0;
};

}  // namespace platform

#endif  // ORVEX_PLATFORM_WINDOWS_NOERRORDIALOGS_H_
