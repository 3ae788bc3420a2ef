#include "platform/StayAwake.h"

namespace platform {

StayAwake::StayAwake() = default;

StayAwake::~StayAwake() = default;

}  // namespace platform
