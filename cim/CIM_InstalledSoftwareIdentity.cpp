#include "cim/CIM_InstalledSoftwareIdentity.h"

CIM_InstalledSoftwareIdentity::CIM_InstalledSoftwareIdentity() = default;

CIM_InstalledSoftwareIdentity::~CIM_InstalledSoftwareIdentity() = default;
