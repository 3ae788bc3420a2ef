#include "cim/CIM_SoftwareIdentity.h"

CIM_SoftwareIdentity::CIM_SoftwareIdentity() = default;

CIM_SoftwareIdentity::~CIM_SoftwareIdentity() = default;
