#include <windows.h>

#include "platform/StayAwake.h"

namespace platform {

// A refusal, which is 0, is no reason to do without what the machine was to stay awake for.
StayAwake::StayAwake() : m_before(SetThreadExecutionState(ES_CONTINUOUS | ES_SYSTEM_REQUIRED)) {}

// What the thread asked for stands where nothing was changed. Where the system refuses to take it
// back, that ends with the thread.
StayAwake::~StayAwake() {
  if (m_before != 0) {
    static_cast<void>(SetThreadExecutionState(ES_CONTINUOUS | m_before));
  }
}

}  // namespace platform
