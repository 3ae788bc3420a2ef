#include "cim/CIM_SoftwareInstallationServiceCapabilities.h"

CIM_SoftwareInstallationServiceCapabilities::CIM_SoftwareInstallationServiceCapabilities() =
    default;

CIM_SoftwareInstallationServiceCapabilities::~CIM_SoftwareInstallationServiceCapabilities() =
    default;
