#include "cim/CIM_ReferencedProfile.h"

CIM_ReferencedProfile::CIM_ReferencedProfile() = default;

CIM_ReferencedProfile::~CIM_ReferencedProfile() = default;
