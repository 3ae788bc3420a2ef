// What an element can do.

#ifndef ORVEX_CIM_CIM_CAPABILITIES_H_
#define ORVEX_CIM_CIM_CAPABILITIES_H_

#include "Utils/Export.h"
#include "cim/CIM_ManagedElement.h"
#include "core/CimKeys.h"
#include "core/CimPropertyTypes.h"

class ORVEX_CORE_API CIM_Capabilities : public CIM_ManagedElement {
 public:
  static constexpr const char* kClassName = "CIM_Capabilities";
  using Superclass = CIM_ManagedElement;

  template <class Self>
  static auto getKeys(Self& self) {
    return core::keys(self.InstanceID);
  }

  CIM_Capabilities();
  ~CIM_Capabilities() override;

  core::CimPropertyString InstanceID{"InstanceID", this};
  core::CimPropertyString ElementName{"ElementName", this};
  core::CimPropertyString Caption{"Caption", this};
  core::CimPropertyString Description{"Description", this};
  core::CimPropertyUint64 Generation{"Generation", this};
};

#endif  // ORVEX_CIM_CIM_CAPABILITIES_H_
