#include "cim/CIM_ControlledBy.h"

CIM_ControlledBy::CIM_ControlledBy() = default;

CIM_ControlledBy::~CIM_ControlledBy() = default;
