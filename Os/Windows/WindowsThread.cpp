#include <windows.h>

#include "Os/NativeThread.h"

namespace os {

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
  if (GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, static_cast<LPCSTR>(inModule),
                         &m_state->module) == FALSE) {
    return static_cast<int>(GetLastError());
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
    const auto error = static_cast<int>(GetLastError());
    FreeLibrary(m_state->module);
    return error;
  }
  return 0;
}

int NativeThread::join() {
  if (GetCurrentThreadId() != m_state->identifier &&
      WaitForSingleObject(m_state->handle, INFINITE) != WAIT_OBJECT_0) {
    utils::logError(kLog, "utils::Thread::~Thread", "Could not wait for thread %u. Error %d",
                    static_cast<unsigned>(m_state->identifier), static_cast<int>(GetLastError()));
  }
  return CloseHandle(m_state->handle) != FALSE ? 0 : static_cast<int>(GetLastError());
}

bool NativeThread::hasEnded() const {
  return m_state->handle != nullptr && WaitForSingleObject(m_state->handle, 0) == WAIT_OBJECT_0;
}

}  // namespace os
