// An element conforms to a profile.

#ifndef ORVEX_CIM_CIM_ELEMENTCONFORMSTOPROFILE_H_
#define ORVEX_CIM_CIM_ELEMENTCONFORMSTOPROFILE_H_

#include "Utils/Export.h"
#include "core/CimInstance.h"
#include "core/CimPropertyRef.h"

class CIM_ManagedElement;
class CIM_RegisteredProfile;

class ORVEX_CORE_API CIM_ElementConformsToProfile : public core::CimInstance {
 public:
  CIM_ElementConformsToProfile();
  ~CIM_ElementConformsToProfile() override;

  core::CimPropertyRefT<CIM_RegisteredProfile> ConformantStandard{"ConformantStandard", this};
  core::CimPropertyRefT<CIM_ManagedElement> ManagedElement{"ManagedElement", this};
};

#endif  // ORVEX_CIM_CIM_ELEMENTCONFORMSTOPROFILE_H_
