#include "cim/CIM_LogicalPort.h"

CIM_LogicalPort::CIM_LogicalPort() = default;

CIM_LogicalPort::~CIM_LogicalPort() = default;
