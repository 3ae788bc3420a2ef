// The operations that read and change instances, but for associations (DSP0200, 5.3.2).

#ifndef ORVEX_WBEM_INSTANCEOPERATIONS_H_
#define ORVEX_WBEM_INSTANCEOPERATIONS_H_

#include <string>

#include "wbem/InstanceResults.h"

namespace wbem {

// Each throws StatusFault, and what a provider throws.

// Adds the instances of the class ClassName and of its subclasses.
void collectInstances(const OperationCall& call, InstanceResults& results);
// Adds those of a class of the request's namespace and of its subclasses.
void collectInstancesOf(const OperationCall& call, const std::string& className,
                        InstanceResults& results);

void enumerateInstances(const OperationCall& call);
void enumerateInstanceNames(const OperationCall& call);
void getInstance(const OperationCall& call);
void modifyInstance(const OperationCall& call);

}  // namespace wbem

#endif  // ORVEX_WBEM_INSTANCEOPERATIONS_H_
