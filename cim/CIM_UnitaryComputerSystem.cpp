#include "cim/CIM_UnitaryComputerSystem.h"

CIM_UnitaryComputerSystem::CIM_UnitaryComputerSystem() = default;

CIM_UnitaryComputerSystem::~CIM_UnitaryComputerSystem() = default;
