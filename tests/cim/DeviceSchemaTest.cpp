// The standard classes of devices, systems and their software against the tables of the standard:
// what each derives from, and the properties that it declares or declares anew.

#include <gmock/gmock.h>
#include <initializer_list>
#include <string>
#include <vector>

#include "cim/CIM_ControlledBy.h"
#include "cim/CIM_ElementSoftwareIdentity.h"
#include "cim/CIM_EthernetPort.h"
#include "cim/CIM_HostedService.h"
#include "cim/CIM_InstalledSoftwareIdentity.h"
#include "cim/CIM_PortController.h"
#include "cim/CIM_Service.h"
#include "cim/CIM_SoftwareIdentity.h"
#include "cim/CIM_SystemDevice.h"
#include "cim/CIM_UnitaryComputerSystem.h"
#include "core/DeclareClass.h"

namespace {

using core::ClassDeclaration;
using core::PropertyDeclaration;
using testing::ElementsAre;

struct ClassTable {
  const char* name;
  const char* superclass;
  std::vector<std::string> properties;
};

const ClassTable kTables[] = {
    {"CIM_System",
     "CIM_EnabledLogicalElement",
     {"CreationClassName string", "Name string", "NameFormat string", "PrimaryOwnerName string",
      "PrimaryOwnerContact string", "Roles string[]", "OtherIdentifyingInfo string[]",
      "IdentifyingDescriptions string[]"}},
    {"CIM_ComputerSystem",
     "CIM_System",
     {"NameFormat string", "Dedicated uint16[]", "OtherDedicatedDescriptions string[]",
      "ResetCapability uint16"}},
    {"CIM_UnitaryComputerSystem", "CIM_ComputerSystem", {}},
    {"CIM_LogicalPort",
     "CIM_LogicalDevice",
     {"Speed uint64", "MaxSpeed uint64", "RequestedSpeed uint64", "UsageRestriction uint16",
      "PortType uint16", "OtherPortType string"}},
    {"CIM_NetworkPort",
     "CIM_LogicalPort",
     {"Speed uint64", "PortNumber uint16", "LinkTechnology uint16", "OtherLinkTechnology string",
      "PermanentAddress string", "NetworkAddresses string[]", "FullDuplex boolean",
      "AutoSense boolean", "SupportedMaximumTransmissionUnit uint64",
      "ActiveMaximumTransmissionUnit uint64"}},
    {"CIM_EthernetPort",
     "CIM_NetworkPort",
     {"PortType uint16", "NetworkAddresses string[]", "MaxDataSize uint32", "Capabilities uint16[]",
      "CapabilityDescriptions string[]", "EnabledCapabilities uint16[]",
      "OtherEnabledCapabilities string[]", "PVID uint16", "PoEPowerEntityType uint16",
      "PortDiscriminator string[]"}},
    {"CIM_Controller",
     "CIM_LogicalDevice",
     {"TimeOfLastReset datetime", "ProtocolSupported uint16", "MaxNumberControlled uint32",
      "ProtocolDescription string"}},
    {"CIM_PortController",
     "CIM_Controller",
     {"ControllerType uint16", "OtherControllerType string", "ControllerVersion uint16"}},
    {"CIM_SoftwareIdentity",
     "CIM_LogicalElement",
     {"InstanceID string",
      "MajorVersion uint16",
      "MinorVersion uint16",
      "RevisionNumber uint16",
      "BuildNumber uint16",
      "LargeBuildNumber uint64",
      "IsLargeBuildNumber boolean",
      "VersionString string",
      "TargetOperatingSystems string[]",
      "Manufacturer string",
      "Languages string[]",
      "Classifications uint16[]",
      "ClassificationDescriptions string[]",
      "SerialNumber string",
      "TargetTypes string[]",
      "IdentityInfoValue string[]",
      "IdentityInfoType string[]",
      "ReleaseDate datetime",
      "IsEntity boolean",
      "ExtendedResourceType uint16",
      "OtherExtendedResourceTypeDescription string",
      "MinExtendedResourceTypeMajorVersion uint16",
      "MinExtendedResourceTypeMinorVersion uint16",
      "MinExtendedResourceTypeRevisionNumber uint16",
      "MinExtendedResourceTypeBuildNumber uint16",
      "TargetOSTypes uint16[]"}},
    {"CIM_ElementSoftwareIdentity",
     "CIM_Dependency",
     {"Antecedent CIM_SoftwareIdentity ref", "Dependent CIM_ManagedElement ref",
      "UpgradeCondition uint16", "OtherUpgradeCondition string", "ElementSoftwareStatus uint16[]"}},
    {"CIM_InstalledSoftwareIdentity",
     "",
     {"System CIM_System ref", "InstalledSoftware CIM_SoftwareIdentity ref"}},
    {"CIM_Component",
     "",
     {"GroupComponent CIM_ManagedElement ref", "PartComponent CIM_ManagedElement ref"}},
    {"CIM_SystemComponent",
     "CIM_Component",
     {"GroupComponent CIM_System ref", "PartComponent CIM_ManagedSystemElement ref"}},
    {"CIM_SystemDevice",
     "CIM_SystemComponent",
     {"GroupComponent CIM_System ref", "PartComponent CIM_LogicalDevice ref"}},
    {"CIM_DeviceConnection",
     "CIM_Dependency",
     {"Antecedent CIM_LogicalDevice ref", "Dependent CIM_LogicalDevice ref",
      "NegotiatedSpeed uint64", "NegotiatedDataWidth uint32"}},
    {"CIM_ControlledBy",
     "CIM_DeviceConnection",
     {"Antecedent CIM_Controller ref", "Dependent CIM_LogicalDevice ref", "AccessState uint16",
      "TimeOfDeviceReset datetime", "NumberOfHardResets uint32", "NumberOfSoftResets uint32",
      "DeviceNumber string", "AccessMode uint16", "AccessPriority uint16"}},
    {"CIM_HostedDependency",
     "CIM_Dependency",
     {"Antecedent CIM_ManagedElement ref", "Dependent CIM_ManagedElement ref"}},
    {"CIM_HostedService",
     "CIM_HostedDependency",
     {"Antecedent CIM_System ref", "Dependent CIM_Service ref"}},
};

class DeviceSchema : public testing::Test {
 protected:
  DeviceSchema() {
    core::CimSchema& declared = m_schema;
    core::declareClass<CIM_UnitaryComputerSystem>(declared);
    core::declareClass<CIM_EthernetPort>(declared);
    core::declareClass<CIM_PortController>(declared);
    core::declareClass<CIM_SoftwareIdentity>(declared);
    core::declareClass<CIM_ElementSoftwareIdentity>(declared);
    core::declareClass<CIM_InstalledSoftwareIdentity>(declared);
    core::declareClass<CIM_SystemDevice>(declared);
    core::declareClass<CIM_ControlledBy>(declared);
    core::declareClass<CIM_HostedService>(declared);
  }

  const ClassDeclaration& get(const std::string& name) const { return *m_schema.find(name); }

  static std::string typeOf(const PropertyDeclaration& property) {
    return property.type == core::kCimReference ? property.referenceClass + " ref"
                                                : std::string(core::getTypeName(property.type)) +
                                                      (core::isArray(property.type) ? "[]" : "");
  }

  // Returns "name type" of each property that the class itself declares.
  static std::vector<std::string> ownPropertiesOf(const ClassDeclaration& declaration) {
    std::vector<std::string> own;
    for (const PropertyDeclaration& property : declaration.properties) {
      if (property.origin == declaration.name) {
        own.push_back(property.name + " " + typeOf(property));
      }
    }
    return own;
  }

  std::vector<std::string> keysOf(const std::string& name) const {
    std::vector<std::string> keys;
    for (const PropertyDeclaration& property : get(name).properties) {
      if (property.isKey) {
        keys.push_back(property.name);
      }
    }
    return keys;
  }

  core::CimSchema m_schema;
};

TEST_F(DeviceSchema, DeclaresWhatTheStandardDoes) {
  for (const ClassTable& table : kTables) {
    ASSERT_NE(m_schema.find(table.name), nullptr) << table.name;
    EXPECT_EQ(get(table.name).superclass, table.superclass) << table.name;
    EXPECT_EQ(ownPropertiesOf(get(table.name)), table.properties) << table.name;
  }
}

TEST_F(DeviceSchema, InheritsTheRest) {
  for (const ClassTable& table : kTables) {
    const ClassDeclaration* superclass = m_schema.find(table.superclass);
    for (const PropertyDeclaration& property :
         superclass != nullptr ? superclass->properties : std::vector<PropertyDeclaration>()) {
      EXPECT_NE(get(table.name).findProperty(property.name), nullptr)
          << table.name << "." << property.name;
    }
  }
}

TEST_F(DeviceSchema, KeysASystemByWhatItsDevicesCallIt) {
  for (const char* name : {"CIM_System", "CIM_ComputerSystem", "CIM_UnitaryComputerSystem"}) {
    EXPECT_THAT(keysOf(name), ElementsAre("CreationClassName", "Name")) << name;
  }
  EXPECT_THAT(keysOf("CIM_EthernetPort"), ElementsAre("SystemCreationClassName", "SystemName",
                                                      "CreationClassName", "DeviceID"));
  EXPECT_THAT(keysOf("CIM_SoftwareIdentity"), ElementsAre("InstanceID"));
}

TEST_F(DeviceSchema, KeysAssociationsByTheirReferences) {
  std::size_t associations = 0;
  for (const ClassTable& table : kTables) {
    const ClassDeclaration& declaration = get(table.name);
    associations += declaration.isAssociation ? 1 : 0;
    for (const PropertyDeclaration& property : declaration.properties) {
      EXPECT_TRUE(!declaration.isAssociation ||
                  property.isKey == (property.type == core::kCimReference))
          << table.name << "." << property.name;
    }
  }
  EXPECT_EQ(associations, 9u);
}

}  // namespace
