#include "cim/CIM_HostedDependency.h"

CIM_HostedDependency::CIM_HostedDependency() = default;

CIM_HostedDependency::~CIM_HostedDependency() = default;
