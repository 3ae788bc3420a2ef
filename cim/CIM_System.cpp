#include "cim/CIM_System.h"

CIM_System::CIM_System() = default;

CIM_System::~CIM_System() = default;
