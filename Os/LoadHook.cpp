#include "Os/LoadHook.h"

#include <exception>

namespace os {

void runLoadHook(utils::LogSource log, void (*attach)()) noexcept {
  try {
    attach();
  } catch (const std::exception& error) {
    utils::logError(log, "os::runLoadHook", "The module could not register its agent: %s",
                    error.what());
  } catch (...) {
    utils::logError(log, "os::runLoadHook", "The module could not register its agent");
  }
}

}  // namespace os
