// The operations that open, pull and close enumerations (DSP0200, 5.3.2.24).

#ifndef ORVEX_WBEM_PULLOPERATIONS_H_
#define ORVEX_WBEM_PULLOPERATIONS_H_

#include "wbem/OperationCall.h"

namespace wbem {

// Each throws StatusFault, and what a provider throws.
void openEnumerateInstances(const OperationCall& call);
void openEnumerateInstancePaths(const OperationCall& call);
void openReferenceInstances(const OperationCall& call);
void openReferenceInstancePaths(const OperationCall& call);
void openAssociatorInstances(const OperationCall& call);
void openAssociatorInstancePaths(const OperationCall& call);
void openQueryInstances(const OperationCall& call);
void pullInstancesWithPath(const OperationCall& call);
void pullInstancePaths(const OperationCall& call);
// Of a query, whose instances come without their paths.
void pullInstances(const OperationCall& call);
void closeEnumeration(const OperationCall& call);

}  // namespace wbem

#endif  // ORVEX_WBEM_PULLOPERATIONS_H_
