#include "cim/CIM_SoftwareInstallationService.h"

#include "cim/MethodSignatures.h"

CIM_SoftwareInstallationService::CIM_SoftwareInstallationService() {
  for (const core::MethodDeclaration& method : CIM_SoftwareInstallationService::getMethods()) {
    declareMethod(method.name);
  }
}

CIM_SoftwareInstallationService::~CIM_SoftwareInstallationService() = default;

std::vector<core::MethodDeclaration> CIM_SoftwareInstallationService::getMethods() {
  return cim::getMethods(kClassName);
}
