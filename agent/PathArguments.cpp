#include "agent/PathArguments.h"

namespace agent {

PathArgument::PathArgument(const core::CimPropertyRef& argument)
    : text(argument.toString()), path(text) {}

}  // namespace agent
