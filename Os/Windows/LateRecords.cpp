#include "Os/Windows/LateRecords.h"

#include <atomic>
#include <cstddef>
#include <new>
#include <utility>
#include <windows.h>

#include "Utils/Log.h"
#include "platform/Windows/Handle.h"

namespace os {
namespace {

// Where the block of a 64-bit process has the lock of its loader; no header says so.
constexpr std::size_t kLoaderLock = 0x110;
static_assert(sizeof(void*) == 8);

// A library whose loading fails says so in a line or two.
constexpr std::size_t kMostLines = 100;

// The system's own mutex, which needs no memory, and is there before all others and after them:
// libraries are unloaded until the process has ended. A leaf.
SRWLOCK s_lock = SRWLOCK_INIT;

class Turn {
 public:
  Turn() { AcquireSRWLockExclusive(&s_lock); }
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;
  ~Turn() { ReleaseSRWLockExclusive(&s_lock); }
};

// As lasting as the mutex that guards it.
union Kept {
  constexpr Kept() : lines{} {}
  ~Kept() {}

  std::vector<std::string> lines;
};
constinit Kept s_kept;

// How many modules keep this library loaded for a thread that writes.
std::atomic<int> s_writers{0};
// Whether a thread was started that has not begun to write.
std::atomic<bool> s_isThreadDue{false};

// Returns false where there are too many.
bool keep(const std::string& line) {
  const Turn turn;
  if (s_kept.lines.size() == kMostLines) {
    return false;
  }
  s_kept.lines.push_back(line);
  return true;
}

bool isEmpty() noexcept {
  const Turn turn;
  return s_kept.lines.empty();
}

template <class Function>
Function* findSystemFunction(const char* name) {
  return reinterpret_cast<Function*>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), name)));
}

// Then no thread runs any more, nor would one that is started.
bool isProcessEnding() {
  auto* const isEnding = findSystemFunction<BOOLEAN NTAPI()>("RtlDllShutdownInProgress");
  return isEnding != nullptr && isEnding() != FALSE;
}

// Returns a reference to this library, which must not be on its way out; null where the system
// gives none.
HMODULE keepLibrary() {
  HMODULE self = nullptr;
  return GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                            reinterpret_cast<LPCSTR>(reinterpret_cast<void*>(&isInLoader)),
                            &self) != FALSE
             ? self
             : nullptr;
}

DWORD WINAPI writeAndEnd(void* library) {
  // Before the records are taken: one that comes later starts another thread.
  s_isThreadDue = false;
  writeRecordsNow();
  FreeLibraryAndExitThread(static_cast<HMODULE>(library), 0);
}

// The thread has to wait for the loader's lock before it begins, so whoever has that must not wait
// for the thread. Where none can be started, the records wait for the next call that may write.
void startThread() noexcept {
  if (s_writers == 0 || isProcessEnding() || s_isThreadDue.exchange(true)) {
    return;
  }
  const HMODULE self = keepLibrary();
  if (self == nullptr) {
    s_isThreadDue = false;
    return;
  }
  const platform::Handle thread(CreateThread(nullptr, 0, writeAndEnd, self, 0, nullptr));
  if (!thread.isOpen()) {
    s_isThreadDue = false;
    static_cast<void>(FreeLibrary(self));  // it fails for what is no library alone
  }
}

}  // namespace

bool isInLoader() {
  auto* const getBlock = findSystemFunction<const std::byte * NTAPI()>("RtlGetCurrentPeb");
  if (getBlock == nullptr) {
    return false;
  }
  const auto* const lock =
      *reinterpret_cast<const CRITICAL_SECTION* const*>(getBlock() + kLoaderLock);
  return lock != nullptr && reinterpret_cast<ULONG_PTR>(lock->OwningThread) == GetCurrentThreadId();
}

void keepRecord(const std::string& line) noexcept {
  try {
    if (!keep(line)) {
      OutputDebugStringA("OrvexQuorvel: a record for the event log is lost behind many others\n");
    }
  } catch (const std::bad_alloc&) {
    OutputDebugStringA("OrvexQuorvel: a record for the event log is lost for want of memory\n");
    return;
  }
  startThread();
}

std::vector<std::string> takeRecords() noexcept {
  const Turn turn;
  return std::exchange(s_kept.lines, {});
}

void writeRecordsNow() noexcept {
  if (isInLoader()) {
    return;
  }
  for (const std::string& line : takeRecords()) {
    utils::platformLogSinks().writeEventLog(line);
  }
}

void abandonRecords() noexcept {
  for (const std::string& line : takeRecords()) {
    OutputDebugStringA(line.c_str());
  }
}

HMODULE beginWriting() noexcept {
  const HMODULE self = keepLibrary();
  if (self == nullptr) {
    return nullptr;
  }
  ++s_writers;
  if (!isEmpty()) {
    startThread();
  }
  return self;
}

bool endWriting() noexcept {
  --s_writers;
  return !isProcessEnding();
}

}  // namespace os
