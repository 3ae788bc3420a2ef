// The operations by which clients query (DSP0200, 5.3.2.13): ExecQuery; for what is pulled see
// wbem/PullOperations.h.

#ifndef ORVEX_WBEM_QUERYOPERATIONS_H_
#define ORVEX_WBEM_QUERYOPERATIONS_H_

#include "query/Query.h"
#include "wbem/InstanceResults.h"
#include "wbem/OperationCall.h"

namespace wbem {

// Throws StatusFault, and what a provider throws.
void execQuery(const OperationCall& call);

// Returns the properties that a query selects.
[[nodiscard]] PropertyChoice choiceOf(const query::Query& query);

}  // namespace wbem

#endif  // ORVEX_WBEM_QUERYOPERATIONS_H_
