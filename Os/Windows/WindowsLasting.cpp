#include <array>
#include <cstddef>
#include <windows.h>

#include "Os/Windows/LateRecords.h"
#include "Utils/Lasting.h"
#include "platform/Mutex.h"

namespace {

struct Lasting {
  platform::Mutex mutex;  // a leaf
  std::array<void (*)(), 16> destroy ORVEX_GUARDED_BY(mutex){};
  std::size_t count ORVEX_GUARDED_BY(mutex) = 0;
};

Lasting& lasting() {
  static Lasting lasting;
  return lasting;
}

// Returns what is to be destroyed next, null where there is nothing more.
void (*takeLast())() {
  Lasting& objects = lasting();
  const platform::Lock lock(objects.mutex);
  return objects.count == 0 ? nullptr : objects.destroy[--objects.count];
}

}  // namespace

namespace utils {

void destroyAtUnload(void (*destroy)()) noexcept {
  Lasting& objects = lasting();
  const platform::Lock lock(objects.mutex);
  if (objects.count < objects.destroy.size()) {
    objects.destroy[objects.count++] = destroy;
  }
}

}  // namespace utils

// The modules that need this library have been unloaded by then. At the end of the process
// (`reserved` is set) threads may have been ended anywhere: everything stays as it is.
extern "C" BOOL WINAPI DllMain(HANDLE /*module*/, DWORD reason, LPVOID reserved) {
  if (reason == DLL_PROCESS_DETACH && reserved == nullptr) {
    for (auto* destroy = takeLast(); destroy != nullptr; destroy = takeLast()) {
      destroy();
    }
    os::abandonRecords();
  }
  return TRUE;
}
