#include "cim/CIM_DeviceConnection.h"

CIM_DeviceConnection::CIM_DeviceConnection() = default;

CIM_DeviceConnection::~CIM_DeviceConnection() = default;
