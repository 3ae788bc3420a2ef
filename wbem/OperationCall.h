// One request of an operation, with all that it is answered from.

#ifndef ORVEX_WBEM_OPERATIONCALL_H_
#define ORVEX_WBEM_OPERATIONCALL_H_

#include <string>

#include "cimxml/Request.h"
#include "core/CimBroker.h"
#include "wbem/Caller.h"
#include "wbem/Namespaces.h"
#include "wbem/OperationParameters.h"
#include "wbem/PullEnumerations.h"

namespace wbem {

struct OperationCall {
  const cimxml::Request& request;
  const Caller& caller;
  const OperationParameters& parameters;
  core::CimBroker& broker;
  const Namespaces& namespaces;
  const Namespace& nameSpace;  // of the request
  const std::string& host;     // of paths
  PullEnumerations& enumerations;
  std::string& out;  // what stands in the answer: the return value and the output parameters
};

// Answers an operation. What it appended before it throws is dropped.
using RunOperation = void (*)(const OperationCall& call);

}  // namespace wbem

#endif  // ORVEX_WBEM_OPERATIONCALL_H_
