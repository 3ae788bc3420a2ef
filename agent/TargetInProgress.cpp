#include "agent/TargetInProgress.h"

#include <utility>

#include "Utils/Mutex.h"

namespace agent {
namespace {

struct State {
  utils::Mutex mutex;
  std::string target ORVEX_GUARDED_BY(mutex);
};

State* s_state = nullptr;  // for dropTargetInProgress()

State& state() {
  // Not destroyed with the process: jobs that end with it still clear the name.
  static State& state = *[] {
    s_state = new State;
    return s_state;
  }();
  return state;
}

}  // namespace

std::string getTargetInProgress() {
  const utils::ScopedLock lock(state().mutex);
  return state().target;
}

void setTargetInProgress(const std::string& target) {
  const utils::ScopedLock lock(state().mutex);
  state().target = target;
}

void clearTargetInProgress() noexcept {
  const utils::ScopedLock lock(state().mutex);
  state().target.clear();
}

void dropTargetInProgress() noexcept {
  delete std::exchange(s_state, nullptr);
}

}  // namespace agent
