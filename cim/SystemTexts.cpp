// Systems, and what they have.

#include "cim/SchemaTexts.h"
#include "cim/TextTables.h"

namespace cim {
namespace {

using core::ClassText;
using core::ElementText;
using core::ValueName;

constexpr ValueName kDedications[] = {
    {"0", "Not Dedicated"},
    {"1", "Unknown"},
    {"2", "Other"},
    {"3", "Storage"},
    {"4", "Router"},
    {"5", "Switch"},
    {"6", "Layer 3 Switch"},
    {"7", "Central Office Switch"},
    {"8", "Hub"},
    {"9", "Access Server"},
    {"10", "Firewall"},
    {"11", "Print"},
    {"12", "I/O"},
    {"13", "Web Caching"},
    {"14", "Management"},
    {"15", "Block Server"},
    {"16", "File Server"},
    {"17", "Mobile User Device"},
    {"..", "Another value of the DMTF schema"},
};

constexpr ValueName kResetCapabilities[] = {
    {"1", "Other"}, {"2", "Unknown"}, {"3", "Disabled"}, {"4", "Enabled"}, {"5", "Not Implemented"},
};

constexpr ValueName kAccessStates[] = {
    {"0", "Unknown"},
    {"1", "Active"},
    {"2", "Inactive"},
};

constexpr ValueName kAccessModes[] = {
    {"2", "ReadWrite"},
    {"3", "ReadOnly"},
    {"4", "NoAccess"},
};

constexpr core::UnitText kBits{"Bits", "bit"};

constexpr ElementText kSystem[] = {
    {"CreationClassName",
     "The class that the keys of devices and services name as that of their system."},
    {"Name", "The name of the system."},
    {"NameFormat", "How the name was made."},
    {"PrimaryOwnerName", "Who owns the system."},
    {"PrimaryOwnerContact", "How the owner is reached."},
    {"Roles", "What the system is used for."},
    {"OtherIdentifyingInfo", "What the system is known by, beside its name."},
    {"IdentifyingDescriptions", "What the values of the same place in OtherIdentifyingInfo are."},
};

constexpr ElementText kComputerSystem[] = {
    {"Dedicated", "What the system alone does.", kDedications},
    {"OtherDedicatedDescriptions",
     "What it does in words, where a value of Dedicated is 2 (Other)."},
    {"ResetCapability", "Whether the system can be reset by its hardware.", kResetCapabilities},
};

constexpr ElementText kComponent[] = {
    {"GroupComponent", "What the part belongs to."},
    {"PartComponent", "The part."},
};

constexpr ElementText kSystemComponent[] = {
    {"GroupComponent", "The system."},
    {"PartComponent", "The element that is a part of it."},
};

constexpr ElementText kSystemDevice[] = {
    {"GroupComponent", "The system."},
    {"PartComponent", "The device that is a part of it."},
};

constexpr ElementText kDeviceConnection[] = {
    {"Antecedent", "The one device."},
    {"Dependent", "The other device."},
    {"NegotiatedSpeed", "The speed that the devices have agreed on.", {}, core::kBitsPerSecond},
    {"NegotiatedDataWidth", "The width of data that the devices have agreed on.", {}, kBits},
};

constexpr ElementText kControlledBy[] = {
    {"Antecedent", "The controller."},
    {"Dependent", "The device that it controls."},
    {"AccessState", "Whether the controller works with the device at present.", kAccessStates},
    {"TimeOfDeviceReset", "When the controller last reset the device."},
    {"NumberOfHardResets", "How often the controller has reset the device by hardware."},
    {"NumberOfSoftResets", "How often the controller has reset the device by software."},
    {"DeviceNumber", "The number by which the controller knows the device."},
    {"AccessMode", "What the controller may do with the device.", kAccessModes},
    {"AccessPriority", "The priority of this controller among those of the device."},
};

constexpr ElementText kHostedDependency[] = {
    {"Antecedent", "What the other is there with."},
    {"Dependent", "What is there with it."},
};

constexpr ElementText kHostedService[] = {
    {"Antecedent", "The system."},
    {"Dependent", "The service that runs on it."},
};

constexpr ClassText kTexts[] = {
    {"CIM_System",
     "A system, of which devices and services are.",
     kSystem,
     {},
     kSchemaVersion,
     true},
    {"CIM_ComputerSystem", "A system that computes.", kComputerSystem, {}, kSchemaVersion},
    {"CIM_UnitaryComputerSystem", "A computer, and no cluster of them.", {}, {}, kSchemaVersion},
    {"CIM_Component", "An element is a part of another.", kComponent, {}, kSchemaVersion, true},
    {"CIM_SystemComponent",
     "An element is a part of a system.",
     kSystemComponent,
     {},
     kSchemaVersion},
    {"CIM_SystemDevice", "A device is a part of a system.", kSystemDevice, {}, kSchemaVersion},
    {"CIM_DeviceConnection",
     "A device is connected to another.",
     kDeviceConnection,
     {},
     kSchemaVersion},
    {"CIM_ControlledBy",
     "A device is controlled by a controller.",
     kControlledBy,
     {},
     kSchemaVersion},
    {"CIM_HostedDependency",
     "An element is there in the context of another.",
     kHostedDependency,
     {},
     kSchemaVersion},
    {"CIM_HostedService", "A service runs on a system.", kHostedService, {}, kSchemaVersion},
};

}  // namespace

std::span<const ClassText> getSystemTexts() {
  return kTexts;
}

}  // namespace cim
