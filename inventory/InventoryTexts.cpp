#include "inventory/InventoryTexts.h"

#include "cim/SchemaTexts.h"

namespace inventory {
namespace {

using core::ClassText;
using core::ElementText;
using core::ValueName;

constexpr ValueName kComparisons[] = {
    {"installed", "The adapter holds the software"},
    {"running", "The adapter runs the software"},
    {"stored", "The adapter holds the software, which takes effect later"},
    {"newer", "The image is newer than what the adapter holds"},
    {"same", "The image is what the adapter holds"},
    {"same version", "The image has the version that the adapter holds, in other bytes"},
    {"older", "The image is older than what the adapter holds"},
    {"other types", "The image has other types than the adapter"},
    {"not updatable", "The adapter cannot be updated"},
    {"unknown", "Nothing is known"},
};

constexpr ValueName kBootTypes[] = {
    {"0", "None"}, {"1", "PXE"}, {"2", "iSCSI"}, {"3", "FCoE"}, {"4", "UEFI"},
};

constexpr ValueName kImageKinds[] = {{"2", "Held by an adapter"}, {"4", "Firmware image"}};

constexpr ValueName kInfoFormats[] = {
    {"1", "Other"},        {"2", "Host Name"}, {"3", "IPv4 Address"},
    {"4", "IPv6 Address"}, {"200", "URL"},
};

constexpr ElementText kElementSoftware[] = {
    {"Comparison", "What the software is to the adapter.", kComparisons}};

constexpr ElementText kPort[] = {
    {"BootType",
     "What the machine boots from through the port; NULL where its driver does not tell.",
     kBootTypes},
    {"InterfaceNames", "What the operating system calls the port."},
};

constexpr ElementText kController[] = {
    {"VendorID", "The PCI vendor of the adapter."},
    {"PCIDeviceID", "The PCI device of the adapter."},
    {"SubsystemVendorID", "The PCI vendor of the adapter's subsystem."},
    {"SubsystemID", "The PCI subsystem of the adapter."},
    {"PartNumber", "The part number that the adapter tells."},
    {"SerialNumber", "The serial number that the adapter tells."},
    {"DriverName", "The driver of the operating system; NULL where none is bound."},
    {"IsUpdatable", "Whether the firmware of the adapter can be replaced."},
    {"WhyNotUpdatable", "Why it cannot, where that is known."},
    {"IsBeingWritten",
     "Whether its flash is being written; then all that is told is what was last known."},
};

constexpr ElementText kSoftware[] = {
    {"ImageKind", "Whether an adapter holds the software, or it is a file that can be installed.",
     kImageKinds},
};

constexpr ElementText kResource[] = {
    {"InstanceID", "Identifies the file among all instances of its namespace."},
    {"AccessInfo", "The URI of the file, which InstallFromURI takes."},
    {"InfoFormat", "What AccessInfo is: always 200 (URL).", kInfoFormats},
};

constexpr ClassText kTexts[] = {
    {"Orvex_ElementSoftwareIdentity",
     "What a piece of software is to an Ethernet adapter.",
     kElementSoftware,
     {},
     cim::kOrvexVersion},
    {"Orvex_EthernetPort",
     "A port of an Ethernet adapter; it can be the target of an update.",
     kPort,
     {},
     cim::kOrvexVersion},
    {"Orvex_PortController",
     "An Ethernet adapter; it can be the target of an update, which goes through its first port.",
     kController,
     {},
     cim::kOrvexVersion},
    {"Orvex_SoftwareIdentity",
     "A firmware image that can be installed, or firmware that an adapter holds.",
     kSoftware,
     {},
     cim::kOrvexVersion},
    {"Orvex_ComputerSystem", "This machine.", {}, {}, cim::kOrvexVersion},
    {"Orvex_ControlledBy", "A port belongs to an adapter.", {}, {}, cim::kOrvexVersion},
    {"Orvex_EthernetPortConformsToProfile",
     "A port conforms to the Ethernet port profile.",
     {},
     {},
     cim::kOrvexVersion},
    {"Orvex_HostedResource",
     "The file of a firmware image is on this machine.",
     {},
     {},
     cim::kOrvexVersion},
    {"Orvex_HostedService",
     "The installation service runs on this machine.",
     {},
     {},
     cim::kOrvexVersion},
    {"Orvex_InstalledSoftwareIdentity",
     "A piece of software is on an adapter of this machine.",
     {},
     {},
     cim::kOrvexVersion},
    {"Orvex_ResourceForSoftwareIdentity",
     "A firmware image is in a file.",
     {},
     {},
     cim::kOrvexVersion},
    {"Orvex_SystemDevice",
     "An adapter, or one of its ports, is a part of this machine.",
     {},
     {},
     cim::kOrvexVersion},
    {"Orvex_SoftwareIdentityResource",
     "The file of a firmware image.",
     kResource,
     {},
     cim::kOrvexVersion},
};

}  // namespace

std::span<const ClassText> getInventoryTexts() {
  return kTexts;
}

}  // namespace inventory
