// This machine: the system that the keys of devices and services name.

#ifndef ORVEX_INVENTORY_ORVEX_COMPUTERSYSTEM_H_
#define ORVEX_INVENTORY_ORVEX_COMPUTERSYSTEM_H_

#include <string>

#include "cim/CIM_UnitaryComputerSystem.h"
#include "core/InstanceProvider.h"

class Orvex_ComputerSystem : public CIM_UnitaryComputerSystem {
 public:
  static constexpr const char* kClassName = "Orvex_ComputerSystem";
  using Superclass = CIM_UnitaryComputerSystem;

  [[nodiscard]] std::string getClassName() const override { return kClassName; }

  // CreationClassName and Name become what SystemCreationClassName and SystemName of devices are.
  void setPropertyValues(const std::string& name);
};

// Serves one instance, anew when the machine is called otherwise.
class Orvex_ComputerSystemClass : public core::InstanceProvider {
 public:
  Orvex_ComputerSystemClass();

 protected:
  void refresh() override;

 private:
  std::string m_name;  // guarded by the request, as the instance is
};

#endif  // ORVEX_INVENTORY_ORVEX_COMPUTERSYSTEM_H_
