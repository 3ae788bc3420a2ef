#include "agent/TargetInProgress.h"

#include "Utils/Mutex.h"

namespace agent {
namespace {

struct State {
  utils::Mutex mutex;
  std::string target ORVEX_GUARDED_BY(mutex);
};

State& state() {
  // Never destroyed: jobs that end with the process still clear the name.
  static auto* state = new State;
  return *state;
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

}  // namespace agent
