// An element has capabilities.

#ifndef ORVEX_CIM_CIM_ELEMENTCAPABILITIES_H_
#define ORVEX_CIM_CIM_ELEMENTCAPABILITIES_H_

#include "Utils/Export.h"
#include "cim/CIM_Capabilities.h"
#include "cim/CIM_ManagedElement.h"
#include "core/CimInstance.h"
#include "core/CimKeys.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"

class ORVEX_CORE_API CIM_ElementCapabilities : public core::CimInstance {
 public:
  static constexpr const char* kClassName = "CIM_ElementCapabilities";
  using Superclass = core::CimInstance;

  template <class Self>
  static auto getKeys(Self& self) {
    return core::keys(self.ManagedElement, self.Capabilities);
  }

  CIM_ElementCapabilities();
  ~CIM_ElementCapabilities() override;

  core::CimPropertyRefT<CIM_ManagedElement> ManagedElement{"ManagedElement", this};
  core::CimPropertyRefT<CIM_Capabilities> Capabilities{"Capabilities", this};
  core::CimPropertyUint16_arr Characteristics{"Characteristics", this};
};

#endif  // ORVEX_CIM_CIM_ELEMENTCAPABILITIES_H_
