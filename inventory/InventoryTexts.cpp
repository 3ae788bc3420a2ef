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

constexpr ValueName kClassifications[] = {
    {"0", "Unknown"},
    {"1", "Other"},
    {"2", "Driver"},
    {"3", "Configuration Software"},
    {"4", "Application Software"},
    {"5", "Instrumentation"},
    {"6", "Firmware/BIOS"},
    {"7", "Diagnostic Software"},
    {"8", "Operating System"},
    {"9", "Middleware"},
    {"10", "Firmware"},
    {"11", "BIOS/FCode"},
    {"12", "Support/Service Pack"},
    {"13", "Software Bundle"},
    {"..", "DMTF Reserved"},
    {"0x8000..0xFFFF", "Vendor Reserved"},
};

constexpr ValueName kControllerTypes[] = {
    {"0", "Unknown"}, {"1", "Other"}, {"2", "Ethernet"},   {"3", "IB"},          {"4", "FC"},
    {"5", "FDDI"},    {"6", "ATM"},   {"7", "Token Ring"}, {"8", "Frame Relay"},
};

constexpr ValueName kImageKinds[] = {{"2", "Held by an adapter"}, {"4", "Firmware image"}};

constexpr ValueName kInfoFormats[] = {
    {"1", "Other"},        {"2", "Host Name"}, {"3", "IPv4 Address"},
    {"4", "IPv6 Address"}, {"200", "URL"},
};

constexpr ElementText kElementSoftware[] = {
    {"Comparison", "What the software is to the adapter.", kComparisons}};

constexpr ElementText kPort[] = {
    {"PortNumber", "The number of the port on its adapter; the first one has 0."},
    {"PermanentAddress",
     "The network address that is fixed in the port; NULL while it is not known."},
};

constexpr ElementText kController[] = {
    {"ControllerType", "The kind of ports that the controller drives.", kControllerTypes}};

constexpr ElementText kSoftware[] = {
    {"InstanceID", "Identifies the software among all instances of its namespace."},
    {"VersionString", "The version of the software, in its maker's form."},
    {"TargetTypes", "The types of the firmware images that are in the software."},
    {"Classifications", "What kind of software it is: always 10 (Firmware).", kClassifications},
    {"IdentityInfoType", "What the values of the same place in IdentityInfoValue are."},
    {"IdentityInfoValue", "What the software is known by, beside its InstanceID."},
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
