#include "agent/PathArguments.h"

#include "core/CimPath.h"

namespace agent {

void expectPaths(std::initializer_list<const core::CimPropertyRef*> arguments) {
  for (const core::CimPropertyRef* argument : arguments) {
    static_cast<void>(core::CimPath(argument->toString()));
  }
}

}  // namespace agent
