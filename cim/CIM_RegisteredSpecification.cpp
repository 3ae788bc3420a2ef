#include "cim/CIM_RegisteredSpecification.h"

CIM_RegisteredSpecification::CIM_RegisteredSpecification() = default;

CIM_RegisteredSpecification::~CIM_RegisteredSpecification() = default;
