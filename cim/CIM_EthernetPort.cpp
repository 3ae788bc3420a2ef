#include "cim/CIM_EthernetPort.h"

CIM_EthernetPort::CIM_EthernetPort() = default;

CIM_EthernetPort::~CIM_EthernetPort() = default;
