#include "cim/CIM_ManagedElement.h"

CIM_ManagedElement::CIM_ManagedElement() = default;

CIM_ManagedElement::~CIM_ManagedElement() = default;
