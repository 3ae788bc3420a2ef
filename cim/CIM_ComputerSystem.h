// A system that computes.

#ifndef ORVEX_CIM_CIM_COMPUTERSYSTEM_H_
#define ORVEX_CIM_CIM_COMPUTERSYSTEM_H_

#include "Utils/Export.h"
#include "cim/CIM_System.h"
#include "core/CimPropertyTypes.h"

class ORVEX_CORE_API CIM_ComputerSystem : public CIM_System {
 public:
  static constexpr const char* kClassName = "CIM_ComputerSystem";
  using Superclass = CIM_System;

  CIM_ComputerSystem();
  ~CIM_ComputerSystem() override;

  core::CimPropertyString NameFormat{"NameFormat", this};
  core::CimPropertyUint16_arr Dedicated{"Dedicated", this};
  core::CimPropertyString_arr OtherDedicatedDescriptions{"OtherDedicatedDescriptions", this};
  core::CimPropertyUint16 ResetCapability{"ResetCapability", this};
};

#endif  // ORVEX_CIM_CIM_COMPUTERSYSTEM_H_
