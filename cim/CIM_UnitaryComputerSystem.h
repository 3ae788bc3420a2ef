// A computer: one machine, no cluster of them.

#ifndef ORVEX_CIM_CIM_UNITARYCOMPUTERSYSTEM_H_
#define ORVEX_CIM_CIM_UNITARYCOMPUTERSYSTEM_H_

#include "Utils/Export.h"
#include "cim/CIM_ComputerSystem.h"

class ORVEX_CORE_API CIM_UnitaryComputerSystem : public CIM_ComputerSystem {
 public:
  static constexpr const char* kClassName = "CIM_UnitaryComputerSystem";
  using Superclass = CIM_ComputerSystem;

  CIM_UnitaryComputerSystem();
  ~CIM_UnitaryComputerSystem() override;
};

#endif  // ORVEX_CIM_CIM_UNITARYCOMPUTERSYSTEM_H_
