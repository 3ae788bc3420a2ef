#include "inventory/Orvex_ComputerSystem.h"

#include <memory>

#include "Os/Environment.h"
#include "cim/EnabledState.h"
#include "inventory/DeviceValues.h"

namespace {

constexpr utils::LogSource kLog{"Orvex_ComputerSystem"};
constexpr const char* kNameFormat = "Other";  // it is the name of the host, and no address

}  // namespace

void Orvex_ComputerSystem::setPropertyValues(const std::string& name) {
  CreationClassName.setValue(inventory::kSystemClass);
  Name.setValue(name);
  core::markKeys(*this);
  NameFormat.setValue(kNameFormat);
  ElementName.setValue(name);
  Caption.setValue("Computer System " + name);
  Description.setValue(Caption.getValue());
  EnabledState.setValue(cim::kEnabled);  // it answers
}

Orvex_ComputerSystemClass::Orvex_ComputerSystemClass()
    : InstanceProvider(Orvex_ComputerSystem::kClassName,
                       {kLog, "Orvex_ComputerSystemClass::getInstances", "getInstances",
                        "ComputerSystem::getInstances"}) {}

void Orvex_ComputerSystemClass::refresh() {
  const std::string name = os::getComputerName();
  if (instances().iterator().first() != nullptr && name == m_name) {
    return;
  }
  auto system = std::make_unique<Orvex_ComputerSystem>();
  system->setPropertyValues(name);
  instances().clear();
  instances().add(system.get());
  static_cast<void>(system.release());
  m_name = name;
}
