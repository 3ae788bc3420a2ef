#include "cim/CIM_SystemDevice.h"

CIM_SystemDevice::CIM_SystemDevice() = default;

CIM_SystemDevice::~CIM_SystemDevice() = default;
