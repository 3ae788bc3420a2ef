#include "cim/CIM_ServiceAffectsElement.h"

CIM_ServiceAffectsElement::CIM_ServiceAffectsElement() = default;

CIM_ServiceAffectsElement::~CIM_ServiceAffectsElement() = default;
