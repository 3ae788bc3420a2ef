#include "cim/CIM_Service.h"

CIM_Service::CIM_Service() = default;

CIM_Service::~CIM_Service() = default;
