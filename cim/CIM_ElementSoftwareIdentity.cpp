#include "cim/CIM_ElementSoftwareIdentity.h"

CIM_ElementSoftwareIdentity::CIM_ElementSoftwareIdentity() = default;

CIM_ElementSoftwareIdentity::~CIM_ElementSoftwareIdentity() = default;
