#include "Os/LoadHook.h"

#include "inventory/SoftwareInventoryAgent.h"

namespace {

constexpr utils::LogSource kLog{"SoftwareInventoryAgent"};

__attribute__((constructor)) void onLoad() {
  os::runLoadHook(kLog, os::kNotRegistered, inventory::addSoftwareInventoryAgent);
}

}  // namespace
