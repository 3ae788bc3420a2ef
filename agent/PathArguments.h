// The object paths among the arguments of a method.

#ifndef ORVEX_AGENT_PATHARGUMENTS_H_
#define ORVEX_AGENT_PATHARGUMENTS_H_

#include <string>

#include "core/CimPath.h"
#include "core/CimPropertyRef.h"

namespace agent {

// An argument that names an instance, read once: what a method finds out later is told by its
// return value.
struct PathArgument {
  // Throws utils::ESyntaxError when the argument is no object path.
  explicit PathArgument(const core::CimPropertyRef& argument);

  const std::string text;
  const core::CimPath path;
};

}  // namespace agent

#endif  // ORVEX_AGENT_PATHARGUMENTS_H_
