// An element has capabilities.

#ifndef ORVEX_CIM_CIM_ELEMENTCAPABILITIES_H_
#define ORVEX_CIM_CIM_ELEMENTCAPABILITIES_H_

#include "Utils/Export.h"
#include "core/CimInstance.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"

class CIM_Capabilities;
class CIM_ManagedElement;

class ORVEX_CORE_API CIM_ElementCapabilities : public core::CimInstance {
 public:
  CIM_ElementCapabilities();
  ~CIM_ElementCapabilities() override;

  core::CimPropertyRefT<CIM_ManagedElement> ManagedElement{"ManagedElement", this};
  core::CimPropertyRefT<CIM_Capabilities> Capabilities{"Capabilities", this};
  core::CimPropertyUint16_arr Characteristics{"Characteristics", this};
};

#endif  // ORVEX_CIM_CIM_ELEMENTCAPABILITIES_H_
