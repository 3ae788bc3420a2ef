#include "cim/CIM_AffectedJobElement.h"

CIM_AffectedJobElement::CIM_AffectedJobElement() = default;

CIM_AffectedJobElement::~CIM_AffectedJobElement() = default;
