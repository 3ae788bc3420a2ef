#include "cim/CIM_RegisteredProfile.h"

CIM_RegisteredProfile::CIM_RegisteredProfile() = default;

CIM_RegisteredProfile::~CIM_RegisteredProfile() = default;
