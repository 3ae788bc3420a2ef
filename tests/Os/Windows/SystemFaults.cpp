#include "tests/Os/SystemFaults.h"

#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <utility>
#include <windows.h>

#include "tests/support/Windows/ImportPatch.h"

namespace test {
namespace {

constexpr const char* kLibrary = "OrvexCimCore.dll";
constexpr const char* kRuntime = "libstdc++-6.dll";

// By call; 0 for one that is to succeed.
thread_local int s_errors[static_cast<std::size_t>(SystemCall::kCount)];

int takeError(SystemCall call) {
  return std::exchange(s_errors[static_cast<std::size_t>(call)], 0);
}

// Returns whether the call is to fail, with its error set.
bool fails(SystemCall call) {
  const int error = takeError(call);
  if (error != 0) {
    SetLastError(static_cast<DWORD>(error));
  }
  return error != 0;
}

// The functions that the library calls instead of the system's.

HANDLE WINAPI createThread(SECURITY_ATTRIBUTES* attributes, SIZE_T stack,
                           LPTHREAD_START_ROUTINE body, void* argument, DWORD flags,
                           DWORD* identifier) {
  return fails(SystemCall::StartThread)
             ? nullptr
             : CreateThread(attributes, stack, body, argument, flags, identifier);
}

template <SystemCall call>
BOOL WINAPI closeHandle(HANDLE handle) {
  const BOOL isClosed = CloseHandle(handle);
  return fails(call) ? FALSE : isClosed;
}

HANDLE WINAPI createMutex(SECURITY_ATTRIBUTES* attributes, BOOL isOwned, const char* name) {
  return fails(SystemCall::MakeMutex) ? nullptr : CreateMutexA(attributes, isOwned, name);
}

DWORD WINAPI waitForObject(HANDLE handle, DWORD milliseconds) {
  return fails(SystemCall::LockMutex) ? WAIT_FAILED : WaitForSingleObject(handle, milliseconds);
}

BOOL WINAPI releaseMutex(HANDLE mutex) {
  return fails(SystemCall::UnlockMutex) ? FALSE : ReleaseMutex(mutex);
}

HANDLE WINAPI createSemaphore(SECURITY_ATTRIBUTES* attributes, LONG count, LONG maximum,
                              const char* name) {
  return fails(SystemCall::MakeSemaphore) ? nullptr
                                          : CreateSemaphoreA(attributes, count, maximum, name);
}

__time64_t __cdecl tellTime(std::tm* fields) {
  return fails(SystemCall::TellLocalTime) ? -1 : _mkgmtime64(fields);
}

void* __cdecl allocate(std::size_t size) {
  return fails(SystemCall::Allocate) ? nullptr : std::malloc(size);
}

ImportPatch patch(SystemCall call) {
  switch (call) {
    case SystemCall::StartThread:
      return {kLibrary, "CreateThread", &createThread};
    case SystemCall::CloseThread:
      return {kLibrary, "CloseHandle", &closeHandle<SystemCall::CloseThread>};
    case SystemCall::MakeMutex:
      return {kLibrary, "CreateMutexA", &createMutex};
    case SystemCall::CloseMutex:
      return {kLibrary, "CloseHandle", &closeHandle<SystemCall::CloseMutex>};
    case SystemCall::LockMutex:
      return {kLibrary, "WaitForSingleObject", &waitForObject};
    case SystemCall::UnlockMutex:
      return {kLibrary, "ReleaseMutex", &releaseMutex};
    case SystemCall::MakeSemaphore:
      return {kLibrary, "CreateSemaphoreA", &createSemaphore};
    case SystemCall::TellLocalTime:
      return {kLibrary, "_mkgmtime64", &tellTime};
    case SystemCall::LockFile:  // no call of the library here
    case SystemCall::Allocate:
    case SystemCall::kCount:
      break;
  }
  return {kRuntime, "malloc", &allocate};
}

}  // namespace

struct FailingCall::Seam {
  explicit Seam(SystemCall call) : importPatch(patch(call)) {}

  ImportPatch importPatch;
};

FailingCall::FailingCall(SystemCall call, int error)
    : m_call(call), m_seam(std::make_unique<Seam>(call)) {
  s_errors[static_cast<std::size_t>(call)] = error;
}

FailingCall::~FailingCall() {
  takeError(m_call);
}

}  // namespace test
