#include "cim/CIM_SystemComponent.h"

CIM_SystemComponent::CIM_SystemComponent() = default;

CIM_SystemComponent::~CIM_SystemComponent() = default;
