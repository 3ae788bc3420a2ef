#include "cim/CIM_SoftwareInstallationService.h"

CIM_SoftwareInstallationService::CIM_SoftwareInstallationService() = default;

CIM_SoftwareInstallationService::~CIM_SoftwareInstallationService() = default;
