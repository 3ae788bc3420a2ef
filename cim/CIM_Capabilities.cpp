#include "cim/CIM_Capabilities.h"

CIM_Capabilities::CIM_Capabilities() = default;

CIM_Capabilities::~CIM_Capabilities() = default;
