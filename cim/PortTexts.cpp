// Ports and their controllers.

#include "cim/SchemaTexts.h"
#include "cim/TextTables.h"

namespace cim {
namespace {

using core::ClassText;
using core::ElementText;
using core::ValueName;

constexpr core::UnitText kBits{"Bits", "bit"};

constexpr ValueName kUsageRestrictions[] = {
    {"0", "Unknown"},
    {"2", "Front-end only"},
    {"3", "Back-end only"},
    {"4", "Not restricted"},
};

constexpr ValueName kPortTypes[] = {
    {"0", "Unknown"},
    {"1", "Other"},
    {"2", "Not Applicable"},
    {"3..15999", "DMTF Reserved"},
    {"16000..65535", "Vendor Reserved"},
};

constexpr ValueName kLinkTechnologies[] = {
    {"0", "Unknown"},     {"1", "Other"},    {"2", "Ethernet"},   {"3", "IB"},
    {"4", "FC"},          {"5", "FDDI"},     {"6", "ATM"},        {"7", "Token Ring"},
    {"8", "Frame Relay"}, {"9", "Infrared"}, {"10", "BlueTooth"}, {"11", "Wireless LAN"},
};

constexpr ValueName kEthernetPortTypes[] = {
    {"0", "Unknown"},
    {"1", "Other"},
    {"50", "10BaseT"},
    {"51", "10-100BaseT"},
    {"52", "100BaseT"},
    {"53", "1000BaseT"},
    {"54", "2500BaseT"},
    {"55", "10GBaseT"},
    {"56", "10GBase-CX4"},
    {"57", "1000Base-KX"},
    {"58", "10GBase-KX4"},
    {"59", "10GBase-KR"},
    {"60", "1000-10GBase-KX"},
    {"61", "1000Base-KX10GBase-KX4KR"},
    {"62", "10-100-1000BaseT"},
    {"63", "100-1000-10GBaseT"},
    {"..", "Another value of the DMTF schema"},
};

constexpr ValueName kEthernetCapabilities[] = {
    {"0", "Unknown"},
    {"1", "Other"},
    {"2", "AlertOnLan"},
    {"3", "WakeOnLan"},
    {"4", "FailOver"},
    {"5", "LoadBalancing"},
    {"6", "LLDP"},
    {"7", "PoE"},
    {"8", "EEE"},
    {"9", "DCE"},
    {"10", "VDP"},
    {"11", "S-Channel"},
    {"..", "DMTF Reserved"},
};

constexpr ValueName kPowerEntityTypes[] = {
    {"0", "None"},           {"1", "Other"},          {"2", "Power Sourcing Equipment"},
    {"3", "Powered Device"}, {"..", "DMTF Reserved"},
};

constexpr ValueName kProtocols[] = {
    {"1", "Other"},
    {"2", "Unknown"},
    {"3", "EISA"},
    {"4", "ISA"},
    {"5", "PCI"},
    {"6", "ATA/ATAPI"},
    {"7", "Flexible Diskette"},
    {"8", "1496"},
    {"9", "SCSI Parallel Interface"},
    {"10", "SCSI Fibre Channel Protocol"},
    {"11", "SCSI Serial Bus Protocol"},
    {"12", "SCSI Serial Bus Protocol-2 (1394)"},
    {"13", "SCSI Serial Storage Architecture"},
    {"14", "VESA"},
    {"..", "Another value of the DMTF schema"},
};

constexpr ValueName kControllerTypes[] = {
    {"0", "Unknown"}, {"1", "Other"}, {"2", "Ethernet"},   {"3", "IB"},          {"4", "FC"},
    {"5", "FDDI"},    {"6", "ATM"},   {"7", "Token Ring"}, {"8", "Frame Relay"},
};

constexpr ElementText kLogicalPort[] = {
    {"Speed",
     "The speed of the port at present; NULL while it is not known.",
     {},
     core::kBitsPerSecond},
    {"MaxSpeed", "The highest speed that the port can have.", {}, core::kBitsPerSecond},
    {"RequestedSpeed", "The speed that was asked for.", {}, core::kBitsPerSecond},
    {"UsageRestriction", "What the port may be used for.", kUsageRestrictions},
    {"PortType", "The kind of the port.", kPortTypes},
    {"OtherPortType", "The kind of the port in words, where PortType is 1 (Other)."},
};

constexpr ElementText kNetworkPort[] = {
    {"PortNumber", "The number of the port on its adapter; the first one has 0."},
    {"LinkTechnology", "What the link of the port is.", kLinkTechnologies},
    {"OtherLinkTechnology",
     "What the link of the port is in words, where LinkTechnology is 1 (Other)."},
    {"PermanentAddress",
     "The network address that is fixed in the port; NULL while it is not known."},
    {"NetworkAddresses", "The network addresses that the port has at present."},
    {"FullDuplex", "Whether the port sends and receives at the same time."},
    {"AutoSense", "Whether the port finds out the speed of its link by itself."},
    {"SupportedMaximumTransmissionUnit",
     "The largest transmission unit that the port can have.",
     {},
     core::kBytes},
    {"ActiveMaximumTransmissionUnit",
     "The largest transmission unit at present.",
     {},
     core::kBytes},
};

constexpr ElementText kEthernetPort[] = {
    {"PortType", "The kind of Ethernet that the port is made for.", kEthernetPortTypes},
    {"NetworkAddresses",
     "The network addresses that the port has at present, twelve hexadecimal digits each."},
    {"MaxDataSize", "The largest payload that is sent or received, frame not included.", {}, kBits},
    {"Capabilities", "What the port can do.", kEthernetCapabilities},
    {"CapabilityDescriptions", "What the values of Capabilities mean for the port, one by one."},
    {"EnabledCapabilities", "Which of its capabilities the port has enabled.",
     kEthernetCapabilities},
    {"OtherEnabledCapabilities", "The enabled capabilities that have no number, in words."},
    {"PVID", "The identifier of the virtual LAN of frames that come without one."},
    {"PoEPowerEntityType", "Which part of power over Ethernet the port is.", kPowerEntityTypes},
    {"PortDiscriminator", "What tells apart ports that share a function."},
};

constexpr ElementText kController[] = {
    {"TimeOfLastReset", "When the controller was last reset."},
    {"ProtocolSupported", "The protocol by which the controller is reached.", kProtocols},
    {"MaxNumberControlled", "The largest number of devices that the controller can have."},
    {"ProtocolDescription", "More about the protocol, in words."},
};

constexpr ElementText kPortController[] = {
    {"ControllerType", "The kind of ports that the controller drives.", kControllerTypes},
    {"OtherControllerType", "The kind of the ports in words, where ControllerType is 1 (Other)."},
    {"ControllerVersion", "The version of the standard that the controller follows."},
};

constexpr ClassText kTexts[] = {
    {"CIM_LogicalPort", "A port, whatever goes through it.", kLogicalPort, {}, kSchemaVersion},
    {"CIM_NetworkPort", "A port of a network.", kNetworkPort, {}, kSchemaVersion},
    {"CIM_EthernetPort", "A port of an Ethernet.", kEthernetPort, {}, kSchemaVersion},
    {"CIM_Controller", "A device that controls others.", kController, {}, kSchemaVersion, true},
    {"CIM_PortController", "A device that controls ports.", kPortController, {}, kSchemaVersion},
};

}  // namespace

std::span<const ClassText> getPortTexts() {
  return kTexts;
}

}  // namespace cim
