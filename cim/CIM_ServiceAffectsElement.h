// A service can change an element.

#ifndef ORVEX_CIM_CIM_SERVICEAFFECTSELEMENT_H_
#define ORVEX_CIM_CIM_SERVICEAFFECTSELEMENT_H_

#include "Utils/Export.h"
#include "core/CimInstance.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"

class CIM_ManagedElement;
class CIM_Service;

class ORVEX_CORE_API CIM_ServiceAffectsElement : public core::CimInstance {
 public:
  CIM_ServiceAffectsElement();
  ~CIM_ServiceAffectsElement() override;

  core::CimPropertyRefT<CIM_ManagedElement> AffectedElement{"AffectedElement", this};
  core::CimPropertyRefT<CIM_Service> AffectingElement{"AffectingElement", this};
  core::CimPropertyUint16_arr ElementEffects{"ElementEffects", this};
  core::CimPropertyString_arr OtherElementEffectsDescriptions{"OtherElementEffectsDescriptions",
                                                              this};
  core::CimPropertyUint16 AssignedSequence{"AssignedSequence", this};
};

#endif  // ORVEX_CIM_CIM_SERVICEAFFECTSELEMENT_H_
