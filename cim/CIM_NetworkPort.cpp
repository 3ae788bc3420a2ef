#include "cim/CIM_NetworkPort.h"

CIM_NetworkPort::CIM_NetworkPort() = default;

CIM_NetworkPort::~CIM_NetworkPort() = default;
