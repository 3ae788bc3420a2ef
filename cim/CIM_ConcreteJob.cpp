#include "cim/CIM_ConcreteJob.h"

#include "cim/MethodSignatures.h"

CIM_ConcreteJob::CIM_ConcreteJob() {
  for (const core::MethodDeclaration& method : CIM_ConcreteJob::getMethods()) {
    declareMethod(method.name);
  }
}

CIM_ConcreteJob::~CIM_ConcreteJob() = default;

std::vector<core::MethodDeclaration> CIM_ConcreteJob::getMethods() {
  return cim::getMethods(kClassName);
}
