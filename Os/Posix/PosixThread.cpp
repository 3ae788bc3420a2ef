#include <pthread.h>

#include "Os/NativeThread.h"

namespace os {

const utils::LogSource NativeThread::kLog{"Os/Posix/PosixThread"};

struct NativeThread::State {
  Entry entry = nullptr;
  void* argument = nullptr;
  pthread_t handle{};
};

NativeThread::NativeThread() : m_state(std::make_unique<State>()) {}

NativeThread::~NativeThread() = default;

int NativeThread::start(Entry entry, void* argument, const void* /*inModule*/) {
  m_state->entry = entry;
  m_state->argument = argument;
  const auto run = [](void* thread) -> void* {
    const auto& state = *static_cast<State*>(thread);
    state.entry(state.argument);
    return nullptr;
  };
  return pthread_create(&m_state->handle, nullptr, run, m_state.get());
}

int NativeThread::join() {
  return pthread_join(m_state->handle, nullptr);
}

bool NativeThread::hasEnded() const {
  return false;
}

}  // namespace os
