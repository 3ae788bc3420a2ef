#include "cim/CIM_Job.h"

CIM_Job::CIM_Job() = default;

CIM_Job::~CIM_Job() = default;
