// Anything that is managed.

#ifndef ORVEX_CIM_CIM_MANAGEDELEMENT_H_
#define ORVEX_CIM_CIM_MANAGEDELEMENT_H_

#include "Utils/Export.h"
#include "core/CimInstance.h"
#include "core/CimPropertyTypes.h"

class ORVEX_CORE_API CIM_ManagedElement : public core::CimInstance {
 public:
  static constexpr const char* kClassName = "CIM_ManagedElement";
  using Superclass = core::CimInstance;

  CIM_ManagedElement();
  ~CIM_ManagedElement() override;

  core::CimPropertyString InstanceID{"InstanceID", this};
  core::CimPropertyString Caption{"Caption", this};
  core::CimPropertyString Description{"Description", this};
  core::CimPropertyString ElementName{"ElementName", this};
  core::CimPropertyUint64 Generation{"Generation", this};
};

#endif  // ORVEX_CIM_CIM_MANAGEDELEMENT_H_
