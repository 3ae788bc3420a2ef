#include <windows.h>

#include "platform/StayAwake.h"

namespace platform {

// A refusal is no reason to do without what the machine was to stay awake for.
StayAwake::StayAwake() : m_before(SetThreadExecutionState(ES_CONTINUOUS | ES_SYSTEM_REQUIRED)) {}

StayAwake::~StayAwake() {
  static_cast<void>(SetThreadExecutionState(ES_CONTINUOUS | m_before));
}

}  // namespace platform
