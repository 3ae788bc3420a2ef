#include "cim/CIM_ElementCapabilities.h"

CIM_ElementCapabilities::CIM_ElementCapabilities() = default;

CIM_ElementCapabilities::~CIM_ElementCapabilities() = default;
