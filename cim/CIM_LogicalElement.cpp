#include "cim/CIM_LogicalElement.h"

CIM_LogicalElement::CIM_LogicalElement() = default;

CIM_LogicalElement::~CIM_LogicalElement() = default;
