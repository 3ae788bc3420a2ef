#include <pthread.h>

#include "Os/NativeThread.h"

namespace os {
namespace {

// What a thread that nobody waits for begins with.
struct Start {
  NativeThread::Entry entry;
  void* argument;
};

}  // namespace

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

int NativeThread::startAlone(Entry entry, void* argument, const void* /*inModule*/) {
  auto begin = std::make_unique<Start>(Start{entry, argument});
  const auto run = [](void* start) -> void* {
    const std::unique_ptr<const Start> own(static_cast<Start*>(start));
    own->entry(own->argument);
    return nullptr;
  };
  pthread_t thread{};
  if (const int error = pthread_create(&thread, nullptr, run, begin.get()); error != 0) {
    return error;
  }
  static_cast<void>(begin.release());
  static_cast<void>(pthread_detach(thread));  // it fails for what is no such thread alone
  return 0;
}

int NativeThread::join() {
  return pthread_join(m_state->handle, nullptr);
}

bool NativeThread::hasEnded() const {
  return false;
}

}  // namespace os
