#include "cim/CIM_HostedService.h"

CIM_HostedService::CIM_HostedService() = default;

CIM_HostedService::~CIM_HostedService() = default;
