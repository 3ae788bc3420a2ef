#include "platform/StayAwake.h"

namespace platform {

StayAwake::StayAwake() : m_before(0) {}

StayAwake::~StayAwake() = default;

}  // namespace platform
