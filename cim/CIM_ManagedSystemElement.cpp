#include "cim/CIM_ManagedSystemElement.h"

CIM_ManagedSystemElement::CIM_ManagedSystemElement() = default;

CIM_ManagedSystemElement::~CIM_ManagedSystemElement() = default;
