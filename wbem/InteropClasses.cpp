#include "wbem/InteropClasses.h"

#include "Os/Environment.h"
#include "cim/OperationalStatus.h"

namespace wbem {
namespace {

constexpr const char* kSystemClass = "CIM_UnitaryComputerSystem";
constexpr const char* kObjectManagerName = "Orvex:quorveld";

}  // namespace

void CIM_ObjectManager::setPropertyValues() {
  SystemCreationClassName.setValue(kSystemClass);
  SystemName.setValue(os::getComputerName());
  CreationClassName.setValue(kClassName);
  Name.setValue(kObjectManagerName);
  core::markKeys(*this);
  Caption.setValue("CIM server");
  Description.setValue("CIM-XML server of the Zolan(R) Ethernet Adapters");
  ElementName.setValue("quorveld");
  OperationalStatus.setValue({cim::kOperationalStatusOk});
  Started.setValue(1);
  GatherStatisticalData.setValue(0);
}

void CIM_Namespace::setPropertyValues(const std::string& name) {
  SystemCreationClassName.setValue(kSystemClass);
  SystemName.setValue(os::getComputerName());
  ObjectManagerCreationClassName.setValue(CIM_ObjectManager::kClassName);
  ObjectManagerName.setValue(kObjectManagerName);
  CreationClassName.setValue(kClassName);
  Name.setValue(name);
  core::markKeys(*this);
  Caption.setValue(name);
  ElementName.setValue(name);
}

}  // namespace wbem
