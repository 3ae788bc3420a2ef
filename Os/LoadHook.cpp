#include "Os/LoadHook.h"

#include <exception>

namespace os {

void runLoadHook(utils::LogSource log, const char* failure, void (*step)()) noexcept {
  try {
    step();
  } catch (const std::exception& error) {
    utils::logError(log, "os::runLoadHook", "%s: %s", failure, error.what());
  } catch (...) {
    utils::logError(log, "os::runLoadHook", "%s", failure);
  }
}

}  // namespace os
