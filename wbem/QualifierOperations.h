// The operations that read the declarations of qualifiers (DSP0200). They are the same in every
// namespace, and need no instances.

#ifndef ORVEX_WBEM_QUALIFIEROPERATIONS_H_
#define ORVEX_WBEM_QUALIFIEROPERATIONS_H_

#include "wbem/OperationCall.h"

namespace wbem {

// Each throws StatusFault.
void getQualifier(const OperationCall& call);
void enumerateQualifiers(const OperationCall& call);

}  // namespace wbem

#endif  // ORVEX_WBEM_QUALIFIEROPERATIONS_H_
