#include "cim/CIM_Component.h"

CIM_Component::CIM_Component() = default;

CIM_Component::~CIM_Component() = default;
