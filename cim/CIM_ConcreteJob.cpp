#include "cim/CIM_ConcreteJob.h"

CIM_ConcreteJob::CIM_ConcreteJob() = default;

CIM_ConcreteJob::~CIM_ConcreteJob() = default;
