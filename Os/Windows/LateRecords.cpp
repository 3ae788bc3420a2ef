#include "Os/Windows/LateRecords.h"

#include <cstddef>
#include <exception>
#include <utility>
#include <windows.h>

#include "Utils/Log.h"
#include "platform/Mutex.h"
#include "platform/Windows/Handle.h"

namespace os {
namespace {

// Where the block of a 64-bit process has the lock of its loader; no header says so.
constexpr std::size_t kLoaderLock = 0x110;
static_assert(sizeof(void*) == 8);

// A library whose loading fails says so in a line or two.
constexpr std::size_t kMostLines = 100;

struct Kept {
  platform::Mutex mutex;  // a leaf
  std::vector<std::string> lines ORVEX_GUARDED_BY(mutex);
};

// Never destroyed: libraries are unloaded until the process has ended.
Kept& kept() {
  static auto* kept = new Kept;
  return *kept;
}

bool isEmpty() {
  Kept& records = kept();
  const platform::Lock lock(records.mutex);
  return records.lines.empty();
}

}  // namespace

bool isInLoader() {
  using GetBlock = const std::byte*(NTAPI*)();
  const auto getBlock = reinterpret_cast<GetBlock>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlGetCurrentPeb")));
  if (getBlock == nullptr) {
    return false;
  }
  const auto* const lock =
      *reinterpret_cast<const CRITICAL_SECTION* const*>(getBlock() + kLoaderLock);
  return lock != nullptr && reinterpret_cast<ULONG_PTR>(lock->OwningThread) == GetCurrentThreadId();
}

void keepRecord(const std::string& line) noexcept {
  try {
    Kept& records = kept();
    const platform::Lock lock(records.mutex);
    if (records.lines.size() < kMostLines) {
      records.lines.push_back(line);
    }
  } catch (const std::exception&) {
    OutputDebugStringA("OrvexQuorvel: a record for the event log is lost for want of memory\n");
  }
}

std::vector<std::string> takeRecords() {
  Kept& records = kept();
  const platform::Lock lock(records.mutex);
  return std::exchange(records.lines, {});
}

void writeRecordsSoon() noexcept {
  HMODULE self = nullptr;
  if (isEmpty() ||
      GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                         reinterpret_cast<LPCSTR>(reinterpret_cast<void*>(&isInLoader)),
                         &self) == FALSE) {
    return;
  }
  // The thread has to wait for the loader's lock before it begins.
  const auto run = [](void* module) -> DWORD {
    writeRecordsNow();
    FreeLibraryAndExitThread(static_cast<HMODULE>(module), 0);
  };
  const platform::Handle thread(CreateThread(nullptr, 0, run, self, 0, nullptr));
  if (!thread.isOpen()) {
    FreeLibrary(self);
  }
}

void writeRecordsNow() noexcept {
  if (isInLoader()) {
    return;
  }
  try {
    for (const std::string& line : takeRecords()) {
      utils::platformLogSinks().writeEventLog(line);
    }
  } catch (const std::exception&) {
    OutputDebugStringA("OrvexQuorvel: a record for the event log is lost for want of memory\n");
  }
}

}  // namespace os
