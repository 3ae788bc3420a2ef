#include "cim/CIM_OwningJobElement.h"

CIM_OwningJobElement::CIM_OwningJobElement() = default;

CIM_OwningJobElement::~CIM_OwningJobElement() = default;
