#include "cim/CIM_ComputerSystem.h"

CIM_ComputerSystem::CIM_ComputerSystem() = default;

CIM_ComputerSystem::~CIM_ComputerSystem() = default;
