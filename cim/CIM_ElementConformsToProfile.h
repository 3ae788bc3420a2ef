// An element conforms to a profile.

#ifndef ORVEX_CIM_CIM_ELEMENTCONFORMSTOPROFILE_H_
#define ORVEX_CIM_CIM_ELEMENTCONFORMSTOPROFILE_H_

#include "Utils/Export.h"
#include "cim/CIM_ManagedElement.h"
#include "cim/CIM_RegisteredProfile.h"
#include "core/CimInstance.h"
#include "core/CimKeys.h"
#include "core/CimPropertyRef.h"

class ORVEX_CORE_API CIM_ElementConformsToProfile : public core::CimInstance {
 public:
  static constexpr const char* kClassName = "CIM_ElementConformsToProfile";
  using Superclass = core::CimInstance;

  template <class Self>
  static auto getKeys(Self& self) {
    return core::keys(self.ConformantStandard, self.ManagedElement);
  }

  CIM_ElementConformsToProfile();
  ~CIM_ElementConformsToProfile() override;

  core::CimPropertyRefT<CIM_RegisteredProfile> ConformantStandard{"ConformantStandard", this};
  core::CimPropertyRefT<CIM_ManagedElement> ManagedElement{"ManagedElement", this};
};

#endif  // ORVEX_CIM_CIM_ELEMENTCONFORMSTOPROFILE_H_
