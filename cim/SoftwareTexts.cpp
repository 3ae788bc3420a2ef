// Software and what it is to elements.

#include "cim/SchemaTexts.h"
#include "cim/TextTables.h"
#include "cim/ValueTables.h"

namespace cim {
namespace {

using core::ClassText;
using core::ElementText;
using core::ValueName;

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

constexpr ValueName kOperatingSystems[] = {
    {"0", "Unknown"},       {"1", "Other"},
    {"2", "MACOS"},         {"3", "ATTUNIX"},
    {"4", "DGUX"},          {"5", "DECNT"},
    {"6", "Tru64 UNIX"},    {"7", "OpenVMS"},
    {"8", "HPUX"},          {"9", "AIX"},
    {"10", "MVS"},          {"11", "OS400"},
    {"12", "OS/2"},         {"13", "JavaVM"},
    {"14", "MSDOS"},        {"15", "WIN3x"},
    {"16", "WIN95"},        {"17", "WIN98"},
    {"18", "WINNT"},        {"19", "WINCE"},
    {"20", "NCR3000"},      {"21", "NetWare"},
    {"22", "OSF"},          {"23", "DC/OS"},
    {"24", "Reliant UNIX"}, {"..", "Another value of the DMTF schema"},
};

constexpr ValueName kUpgradeConditions[] = {
    {"0", "Unknown"},
    {"1", "Other"},
    {"2", "Resides off device"},
    {"3", "Owner Upgradeable"},
    {"4", "Factory Upgradeable"},
    {"5", "Not Upgradeable"},
    {"..", "DMTF Reserved"},
    {"0x8000..0xFFFF", "Vendor Reserved"},
};

constexpr ValueName kSoftwareStatuses[] = {
    {"0", "Unknown"},
    {"2", "Current"},
    {"3", "Next"},
    {"4", "FallBack"},
    {"5", "Default"},
    {"6", "Installed"},
    {"7", "Single Use"},
    {"8", "Available"},
    {"9", "Supports"},
    {"..", "DMTF Reserved"},
    {"32768..65535", "Vendor Reserved"},
};

constexpr ElementText kSoftware[] = {
    {"InstanceID", "Identifies the software among all instances of its namespace."},
    {"MajorVersion", "The first number of the version."},
    {"MinorVersion", "The second number of the version."},
    {"RevisionNumber", "The third number of the version."},
    {"BuildNumber", "The fourth number of the version, where it is below 65536."},
    {"LargeBuildNumber", "The fourth number of the version, where IsLargeBuildNumber is true."},
    {"IsLargeBuildNumber", "Whether LargeBuildNumber has the fourth number of the version."},
    {"VersionString", "The version of the software, in its maker's form."},
    {"TargetOperatingSystems", "The operating systems that the software is for, in words."},
    {"Manufacturer", "Who made the software; NULL where that is not known."},
    {"Languages", "The languages that the software has."},
    {"Classifications", "What kind of software it is.", kClassifications},
    {"ClassificationDescriptions", "What the values of Classifications mean, one by one."},
    {"SerialNumber", "The serial number of this copy of the software."},
    {"TargetTypes", "The types of the firmware images that are in the software."},
    {"IdentityInfoValue", "What the software is known by, beside its InstanceID."},
    {"IdentityInfoType", "What the values of the same place in IdentityInfoValue are."},
    {"ReleaseDate", "When the software was released, where its package says so."},
    {"IsEntity", "Whether there is a copy of the software here, and not only what is said of it."},
    {"ExtendedResourceType", "The format of the package that the software is in.",
     kExtendedResourceTypes},
    {"OtherExtendedResourceTypeDescription",
     "The format of the package in words, where ExtendedResourceType is 1 (Other)."},
    {"MinExtendedResourceTypeMajorVersion",
     "The first number of the least version of what reads the package."},
    {"MinExtendedResourceTypeMinorVersion", "The second number of that version."},
    {"MinExtendedResourceTypeRevisionNumber", "The third number of that version."},
    {"MinExtendedResourceTypeBuildNumber", "The fourth number of that version."},
    {"TargetOSTypes", "The operating systems that the software is for.", kOperatingSystems},
};

constexpr ElementText kElementSoftware[] = {
    {"Antecedent", "The software."},
    {"Dependent", "The element that it is for, or on."},
    {"UpgradeCondition", "Who may replace the software of the element.", kUpgradeConditions},
    {"OtherUpgradeCondition", "The condition in words, where UpgradeCondition is 1 (Other)."},
    {"ElementSoftwareStatus", "What the software is to the element.", kSoftwareStatuses},
};

constexpr ElementText kInstalled[] = {
    {"System", "The system."},
    {"InstalledSoftware", "The software that is installed on it."},
};

constexpr ClassText kTexts[] = {
    {"CIM_SoftwareIdentity",
     "A piece of software, installed or in a file.",
     kSoftware,
     {},
     kSchemaVersion},
    {"CIM_ElementSoftwareIdentity",
     "A piece of software is for an element, or on it.",
     kElementSoftware,
     {},
     kSchemaVersion},
    {"CIM_InstalledSoftwareIdentity",
     "A piece of software is installed on a system.",
     kInstalled,
     {},
     kSchemaVersion},
};

}  // namespace

std::span<const ClassText> getSoftwareTexts() {
  return kTexts;
}

}  // namespace cim
