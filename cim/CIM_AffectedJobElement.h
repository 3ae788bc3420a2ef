// A job changes an element.

#ifndef ORVEX_CIM_CIM_AFFECTEDJOBELEMENT_H_
#define ORVEX_CIM_CIM_AFFECTEDJOBELEMENT_H_

#include "Utils/Export.h"
#include "cim/CIM_Job.h"
#include "cim/CIM_ManagedElement.h"
#include "core/CimInstance.h"
#include "core/CimKeys.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"

class ORVEX_CORE_API CIM_AffectedJobElement : public core::CimInstance {
 public:
  static constexpr const char* kClassName = "CIM_AffectedJobElement";
  using Superclass = core::CimInstance;

  template <class Self>
  static auto getKeys(Self& self) {
    return core::keys(self.AffectedElement, self.AffectingElement);
  }

  CIM_AffectedJobElement();
  ~CIM_AffectedJobElement() override;

  core::CimPropertyRefT<CIM_ManagedElement> AffectedElement{"AffectedElement", this};
  core::CimPropertyRefT<CIM_Job> AffectingElement{"AffectingElement", this};
  core::CimPropertyUint16_arr ElementEffects{"ElementEffects", this};
  core::CimPropertyString_arr OtherElementEffectsDescriptions{"OtherElementEffectsDescriptions",
                                                              this};
};

#endif  // ORVEX_CIM_CIM_AFFECTEDJOBELEMENT_H_
