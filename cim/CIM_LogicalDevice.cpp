#include "cim/CIM_LogicalDevice.h"

CIM_LogicalDevice::CIM_LogicalDevice() = default;

CIM_LogicalDevice::~CIM_LogicalDevice() = default;
