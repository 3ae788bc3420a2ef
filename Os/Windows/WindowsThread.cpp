#include <windows.h>

#include "Os/NativeThread.h"
#include "platform/Windows/Handle.h"

namespace os {
namespace {

int lastError() {
  return static_cast<int>(GetLastError());
}

// Returns a reference to the module that holds the address; null where there is none.
HMODULE keepModule(const void* inModule) {
  HMODULE module = nullptr;
  return GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, static_cast<LPCSTR>(inModule),
                            &module) != FALSE
             ? module
             : nullptr;
}

// For a start that failed, with an error that tells why; this one would tell nothing more.
void letGo(HMODULE module) {
  static_cast<void>(FreeLibrary(module));
}

// What a thread that nobody waits for begins with.
struct Start {
  NativeThread::Entry entry;
  void* argument;
  HMODULE module;
};

}  // namespace

const utils::LogSource NativeThread::kLog{"Os/Windows/WindowsThread"};

struct NativeThread::State {
  Entry entry = nullptr;
  void* argument = nullptr;
  HANDLE handle = nullptr;
  DWORD identifier = 0;
  HMODULE module = nullptr;  // the thread's own reference to it
};

NativeThread::NativeThread() : m_state(std::make_unique<State>()) {}

NativeThread::~NativeThread() = default;

int NativeThread::start(Entry entry, void* argument, const void* inModule) {
  m_state->entry = entry;
  m_state->argument = argument;
  m_state->module = keepModule(inModule);
  if (m_state->module == nullptr) {
    return lastError();
  }
  const auto run = [](void* thread) -> DWORD {
    const auto& state = *static_cast<State*>(thread);
    const HMODULE module = state.module;
    state.entry(state.argument);
    // What is left of the thread is not in the module. The state may be gone already.
    FreeLibraryAndExitThread(module, 0);
  };
  m_state->handle = CreateThread(nullptr, 0, run, m_state.get(), 0, &m_state->identifier);
  if (m_state->handle == nullptr) {
    const int error = lastError();
    letGo(m_state->module);
    return error;
  }
  return 0;
}

int NativeThread::startAlone(Entry entry, void* argument, const void* inModule) {
  auto begin = std::make_unique<Start>(Start{entry, argument, nullptr});
  begin->module = keepModule(inModule);
  if (begin->module == nullptr) {
    return lastError();
  }
  const auto run = [](void* start) -> DWORD {
    const Start own = *static_cast<Start*>(start);
    delete static_cast<Start*>(start);
    own.entry(own.argument);
    FreeLibraryAndExitThread(own.module, 0);
  };
  const platform::Handle thread(CreateThread(nullptr, 0, run, begin.get(), 0, nullptr));
  if (!thread.isOpen()) {
    const int error = lastError();
    letGo(begin->module);
    return error;
  }
  static_cast<void>(begin.release());
  return 0;
}

int NativeThread::join() {
  if (GetCurrentThreadId() != m_state->identifier &&
      WaitForSingleObject(m_state->handle, INFINITE) != WAIT_OBJECT_0) {
    utils::logError(kLog, "utils::Thread::~Thread", "Could not wait for thread %u. Error %d",
                    static_cast<unsigned>(m_state->identifier), lastError());
  }
  return CloseHandle(m_state->handle) != FALSE ? 0 : lastError();
}

bool NativeThread::hasEnded() const {
  return m_state->handle != nullptr && WaitForSingleObject(m_state->handle, 0) == WAIT_OBJECT_0;
}

}  // namespace os
