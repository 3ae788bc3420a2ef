// The object paths among the arguments of a method.

#ifndef ORVEX_AGENT_PATHARGUMENTS_H_
#define ORVEX_AGENT_PATHARGUMENTS_H_

#include <initializer_list>

#include "core/CimPropertyRef.h"

namespace agent {

// Throws utils::ESyntaxError when one of the arguments is no object path: the first of them. To be
// called where a method reads its arguments: what it finds out later is told by its return value.
void expectPaths(std::initializer_list<const core::CimPropertyRef*> arguments);

}  // namespace agent

#endif  // ORVEX_AGENT_PATHARGUMENTS_H_
