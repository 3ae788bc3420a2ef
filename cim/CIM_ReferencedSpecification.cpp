#include "cim/CIM_ReferencedSpecification.h"

CIM_ReferencedSpecification::CIM_ReferencedSpecification() = default;

CIM_ReferencedSpecification::~CIM_ReferencedSpecification() = default;
