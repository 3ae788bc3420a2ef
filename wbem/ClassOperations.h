// The operations that read the declarations of classes (DSP0200, 5.3.2). They need no instances.

#ifndef ORVEX_WBEM_CLASSOPERATIONS_H_
#define ORVEX_WBEM_CLASSOPERATIONS_H_

#include "wbem/OperationCall.h"

namespace wbem {

// Each throws StatusFault.
void getClass(const OperationCall& call);
void enumerateClasses(const OperationCall& call);
void enumerateClassNames(const OperationCall& call);

}  // namespace wbem

#endif  // ORVEX_WBEM_CLASSOPERATIONS_H_
