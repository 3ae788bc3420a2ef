#include "cim/CIM_PortController.h"

CIM_PortController::CIM_PortController() = default;

CIM_PortController::~CIM_PortController() = default;
