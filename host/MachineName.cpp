#include "host/MachineName.h"

#include <cstdlib>
#include <string>

#include "Os/Environment.h"

namespace host {

void nameMachine() {
  constexpr const char* kVariable = "COMPUTERNAME";
  if (std::getenv(kVariable) != nullptr) {
    return;
  }
  if (const std::string name = os::getMachineName(); !name.empty()) {
    os::setEnvironment(kVariable, name);
  }
}

}  // namespace host
