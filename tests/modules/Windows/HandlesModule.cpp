// A module that uses of the core library what that makes on first use.

#include "Os/QuorvelConfig.h"
#include "core/CimBroker.h"

namespace {

[[maybe_unused]] const bool s_isUsed =
    (static_cast<void>(core::GetCimBroker()),
     static_cast<void>(utils::QuorvelConfig::getInstance()->getTimeout()), true);

}  // namespace
