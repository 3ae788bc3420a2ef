#include "cim/CIM_EnabledLogicalElement.h"

CIM_EnabledLogicalElement::CIM_EnabledLogicalElement() = default;

CIM_EnabledLogicalElement::~CIM_EnabledLogicalElement() = default;
