#include "agent/PathArguments.h"

#include <string>

#include "core/CimPath.h"
#include "core/ObjectPathReader.h"

namespace agent {

void expectPaths(std::initializer_list<const core::CimPropertyRef*> arguments) {
  for (const core::CimPropertyRef* argument : arguments) {
    const std::string text = argument->toString();
    core::ObjectPathParts parts;
    if (core::readObjectPath(text, core::ObjectPathKind::Instance, parts)) {
      // Throws, and has its records. A path that is one has them once, where it is followed.
      static_cast<void>(core::CimPath(text));
    }
  }
}

}  // namespace agent
