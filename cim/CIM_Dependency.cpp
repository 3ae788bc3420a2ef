#include "cim/CIM_Dependency.h"

CIM_Dependency::CIM_Dependency() = default;

CIM_Dependency::~CIM_Dependency() = default;
