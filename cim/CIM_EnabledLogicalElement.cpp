#include "cim/CIM_EnabledLogicalElement.h"

#include "cim/MethodSignatures.h"

CIM_EnabledLogicalElement::CIM_EnabledLogicalElement() {
  for (const core::MethodDeclaration& method : CIM_EnabledLogicalElement::getMethods()) {
    declareMethod(method.name);
  }
}

CIM_EnabledLogicalElement::~CIM_EnabledLogicalElement() = default;

std::vector<core::MethodDeclaration> CIM_EnabledLogicalElement::getMethods() {
  return cim::getMethods(kClassName);
}
