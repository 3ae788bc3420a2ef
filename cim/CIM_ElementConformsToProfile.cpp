#include "cim/CIM_ElementConformsToProfile.h"

CIM_ElementConformsToProfile::CIM_ElementConformsToProfile() = default;

CIM_ElementConformsToProfile::~CIM_ElementConformsToProfile() = default;
