// The operations that follow associations, from instances and from classes (DSP0200, 5.3.2).

#ifndef ORVEX_WBEM_ASSOCIATIONOPERATIONS_H_
#define ORVEX_WBEM_ASSOCIATIONOPERATIONS_H_

#include "wbem/InstanceResults.h"

namespace wbem {

// Each throws StatusFault, and what a provider throws.

// Adds the associations that lead to the object, and what is at their other ends. In the forms of
// pulled results the object is the parameter InstanceName, else ObjectName.
void collectReferences(const OperationCall& call, InstanceResults& results);
void collectAssociators(const OperationCall& call, InstanceResults& results);

void references(const OperationCall& call);
void referenceNames(const OperationCall& call);
void associators(const OperationCall& call);
void associatorNames(const OperationCall& call);

}  // namespace wbem

#endif  // ORVEX_WBEM_ASSOCIATIONOPERATIONS_H_
