// What the numbers of the schema's properties, parameters and return codes stand for, in the words
// of the DMTF CIM schema: each table is the ValueMap and the Values of what it is named for.
// Constant data.

#ifndef ORVEX_CIM_VALUETABLES_H_
#define ORVEX_CIM_VALUETABLES_H_

#include "core/ClassText.h"

namespace cim {

inline constexpr core::ValueName kOperationalStatuses[] = {
    {"0", "Unknown"},
    {"1", "Other"},
    {"2", "OK"},
    {"3", "Degraded"},
    {"4", "Stressed"},
    {"5", "Predictive Failure"},
    {"6", "Error"},
    {"7", "Non-Recoverable Error"},
    {"8", "Starting"},
    {"9", "Stopping"},
    {"10", "Stopped"},
    {"11", "In Service"},
    {"12", "No Contact"},
    {"13", "Lost Communication"},
    {"14", "Aborted"},
    {"15", "Dormant"},
    {"16", "Supporting Entity in Error"},
    {"17", "Completed"},
    {"18", "Power Mode"},
    {"19", "Relocating"},
    {"..", "DMTF Reserved"},
    {"0x8000..", "Vendor Reserved"},
};

inline constexpr core::ValueName kHealthStates[] = {
    {"0", "Unknown"},
    {"5", "OK"},
    {"10", "Degraded/Warning"},
    {"15", "Minor failure"},
    {"20", "Major failure"},
    {"25", "Critical failure"},
    {"30", "Non-recoverable error"},
    {"..", "DMTF Reserved"},
    {"32768..65535", "Vendor Specific"},
};

inline constexpr core::ValueName kPrimaryStatuses[] = {
    {"0", "Unknown"},        {"1", "OK"},
    {"2", "Degraded"},       {"3", "Error"},
    {"..", "DMTF Reserved"}, {"0x8000..", "Vendor Reserved"},
};

inline constexpr core::ValueName kDetailedStatuses[] = {
    {"0", "Not Available"},
    {"1", "No Additional Information"},
    {"2", "Stressed"},
    {"3", "Predictive Failure"},
    {"4", "Non-Recoverable Error"},
    {"5", "Supporting Entity in Error"},
    {"..", "DMTF Reserved"},
    {"0x8000..", "Vendor Reserved"},
};

inline constexpr core::ValueName kOperatingStatuses[] = {
    {"0", "Unknown"},
    {"1", "Not Available"},
    {"2", "Servicing"},
    {"3", "Starting"},
    {"4", "Stopping"},
    {"5", "Stopped"},
    {"6", "Aborted"},
    {"7", "Dormant"},
    {"8", "Completed"},
    {"9", "Migrating"},
    {"10", "Emigrating"},
    {"11", "Immigrating"},
    {"12", "Snapshotting"},
    {"13", "Shutting Down"},
    {"14", "In Test"},
    {"15", "Transitioning"},
    {"16", "In Service"},
    {"..", "DMTF Reserved"},
    {"0x8000..", "Vendor Reserved"},
};

inline constexpr core::ValueName kCommunicationStatuses[] = {
    {"0", "Unknown"},
    {"1", "Not Available"},
    {"2", "Communication OK"},
    {"3", "Lost Communication"},
    {"4", "No Contact"},
    {"..", "DMTF Reserved"},
    {"0x8000..", "Vendor Reserved"},
};

inline constexpr core::ValueName kEnabledStates[] = {
    {"0", "Unknown"},
    {"1", "Other"},
    {"2", "Enabled"},
    {"3", "Disabled"},
    {"4", "Shutting Down"},
    {"5", "Not Applicable"},
    {"6", "Enabled but Offline"},
    {"7", "In Test"},
    {"8", "Deferred"},
    {"9", "Quiesce"},
    {"10", "Starting"},
    {"11..32767", "DMTF Reserved"},
    {"32768..65535", "Vendor Reserved"},
};

inline constexpr core::ValueName kEnabledDefaults[] = {
    {"2", "Enabled"},        {"3", "Disabled"},
    {"5", "Not Applicable"}, {"6", "Enabled but Offline"},
    {"7", "No Default"},     {"9", "Quiesce"},
    {"..", "DMTF Reserved"}, {"32768..65535", "Vendor Reserved"},
};

// RequestedState and TransitioningToState.
inline constexpr core::ValueName kRequestedStates[] = {
    {"0", "Unknown"},        {"2", "Enabled"},
    {"3", "Disabled"},       {"4", "Shut Down"},
    {"5", "No Change"},      {"6", "Offline"},
    {"7", "Test"},           {"8", "Deferred"},
    {"9", "Quiesce"},        {"10", "Reboot"},
    {"11", "Reset"},         {"12", "Not Applicable"},
    {"..", "DMTF Reserved"}, {"32768..65535", "Vendor Reserved"},
};

// What an element's RequestStateChange may be asked for.
inline constexpr core::ValueName kAvailableStates[] = {
    {"2", "Enabled"},
    {"3", "Disabled"},
    {"4", "Shut Down"},
    {"6", "Offline"},
    {"7", "Test"},
    {"8", "Defer"},
    {"9", "Quiesce"},
    {"10", "Reboot"},
    {"11", "Reset"},
    {"..", "DMTF Reserved"},
    {"32768..65535", "Vendor Reserved"},
};

// A job of another system may be in a state that has no name here.
inline constexpr core::ValueName kJobStates[] = {
    {"2", "New"},           {"3", "Starting"},  {"4", "Running"},        {"5", "Suspended"},
    {"6", "Shutting Down"}, {"7", "Completed"}, {"8", "Terminated"},     {"9", "Killed"},
    {"10", "Exception"},    {"11", "Service"},  {"12", "Query Pending"},
};

// What a job's RequestStateChange may be asked for.
inline constexpr core::ValueName kJobStateRequests[] = {
    {"2", "Start"}, {"3", "Suspend"}, {"4", "Terminate"}, {"5", "Kill"}, {"6", "Service"},
};

inline constexpr core::ValueName kMonths[] = {
    {"0", "January"},   {"1", "February"}, {"2", "March"},     {"3", "April"},
    {"4", "May"},       {"5", "June"},     {"6", "July"},      {"7", "August"},
    {"8", "September"}, {"9", "October"},  {"10", "November"}, {"11", "December"},
};

inline constexpr core::ValueName kRunDaysOfWeek[] = {
    {"-7", "-Saturday"}, {"-6", "-Friday"}, {"-5", "-Thursday"}, {"-4", "-Wednesday"},
    {"-3", "-Tuesday"},  {"-2", "-Monday"}, {"-1", "-Sunday"},   {"0", "ExactDayOfMonth"},
    {"1", "Sunday"},     {"2", "Monday"},   {"3", "Tuesday"},    {"4", "Wednesday"},
    {"5", "Thursday"},   {"6", "Friday"},   {"7", "Saturday"},
};

inline constexpr core::ValueName kLocalOrUtcTimes[] = {{"1", "Local Time"}, {"2", "UTC Time"}};

inline constexpr core::ValueName kRecoveryActions[] = {
    {"0", "Unknown"},         {"1", "Other"},
    {"2", "Do Not Continue"}, {"3", "Continue With Next Job"},
    {"4", "Re-run Job"},      {"5", "Run Recovery Job"},
};

inline constexpr core::ValueName kJobElementEffects[] = {
    {"0", "Unknown"},           {"1", "Other"},
    {"2", "Exclusive Use"},     {"3", "Performance Impact"},
    {"4", "Element Integrity"}, {"5", "Create"},
};

inline constexpr core::ValueName kServiceElementEffects[] = {
    {"0", "Unknown"},
    {"1", "Other"},
    {"2", "Exclusive Use"},
    {"3", "Performance Impact"},
    {"4", "Element Integrity"},
    {"5", "Manages"},
    {"6", "Consumes"},
    {"7", "Enhances Integrity"},
    {"8", "Degrades Integrity"},
    {"9", "Enhances Performance"},
    {"10", "Degrades Performance"},
    {"..", "DMTF Reserved"},
    {"0x8000..0xFFFF", "Vendor Reserved"},
};

inline constexpr core::ValueName kCapabilityCharacteristics[] = {
    {"2", "Default"},
    {"3", "Current"},
    {"..", "DMTF Reserved"},
    {"32768..65535", "Vendor Specific"},
};

inline constexpr core::ValueName kStartModes[] = {{"Automatic", "Automatic"}, {"Manual", "Manual"}};

inline constexpr core::ValueName kRegisteredSpecificationTypes[] = {
    {"1", "Other"}, {"2", "Profile"}, {"3", "Message Registry"}, {"..", "DMTF Reserved"}};

inline constexpr core::ValueName kRegisteredOrganizations[] = {
    {"1", "Other"},
    {"2", "DMTF"},
    {"3", "CompTIA"},
    {"4", "Consortium for Service Innovation"},
    {"5", "FAST"},
    {"6", "GGF"},
    {"7", "INTAP"},
    {"8", "itSMF"},
    {"9", "NAC"},
    {"10", "Northwest Energy Efficiency Alliance"},
    {"11", "SNIA"},
    {"12", "TM Forum"},
    {"13", "The Open Group"},
    {"14", "ANSI"},
    {"15", "IEEE"},
    {"16", "IETF"},
    {"17", "INCITS"},
    {"18", "ISO"},
    {"19", "W3C"},
    {"20", "OGF"},
    {"..", "DMTF Reserved"},
    {"32768..65535", "Vendor Reserved"},
};

inline constexpr core::ValueName kAdvertiseTypes[] = {
    {"1", "Other"}, {"2", "Not Advertised"}, {"3", "SLP"}, {"..", "DMTF Reserved"}};

inline constexpr core::ValueName kAsynchronousActions[] = {
    {"2", "None supported"},          {"3", "Install From Software Identity"},
    {"4", "Install from ByteStream"}, {"5", "Install from URI"},
    {"..", "DMTF Reserved"},          {"0x8000..0xFFFF", "Vendor Specific"},
};

inline constexpr core::ValueName kExtendedResourceTypes[] = {
    {"0", "Unknown"},
    {"1", "Other"},
    {"2", "Not Applicable"},
    {"3", "Linux RPM"},
    {"4", "HP-UX Depot"},
    {"5", "Windows MSI"},
    {"6", "Solaris Package"},
    {"7", "Macintosh Disk Image"},
    {"8", "Debian linux Package"},
    {"9", "VMware vSphere Installation Bundle"},
    {"10", "VMware Software Bulletin"},
    {"11", "HP Smart Component"},
    {"..", "DMTF Reserved"},
    {"0x8000..", "Vendor Reserved"},
};

inline constexpr core::ValueName kUriSchemes[] = {
    {"2", "data"}, {"3", "file"},           {"4", "ftp"},
    {"5", "http"}, {"6", "https"},          {"7", "nfs"},
    {"8", "tftp"}, {"..", "DMTF Reserved"}, {"0x8000..0xFFFF", "Vendor Specific"},
};

// Of the vendor's values, one has a meaning here (cim::kTargetTypes).
inline constexpr core::ValueName kInstallOptions[] = {
    {"2", "Defer target/system reset"},
    {"3", "Force installation"},
    {"4", "Install"},
    {"5", "Update"},
    {"6", "Repair"},
    {"7", "Reboot"},
    {"8", "Password"},
    {"9", "Uninstall"},
    {"10", "Log"},
    {"11", "SilentMode"},
    {"12", "AdministrativeMode"},
    {"13", "ScheduleInstallAt"},
    {"..", "DMTF Reserved"},
    {"32768", "Target Types"},
    {"32769..65535", "Vendor Specific"},
};

inline constexpr core::ValueName kInstallCharacteristics[] = {
    {"2", "Target automatic reset"},
    {"3", "System automatic reset"},
    {"4", "Separate target reset Required"},
    {"5", "Separate system reset Required"},
    {"6", "Manual Reboot Required"},
    {"7", "No Reboot Required"},
    {"8", "User Intervention Recommended"},
    {"9", "MAY be added to specified Collection"},
    {"..", "DMTF Reserved"},
    {"0x7FFF..0xFFFF", "Vendor Specific"},
};

// Of InstallFromSoftwareIdentity and InstallFromURI.
inline constexpr core::ValueName kInstallReturns[] = {
    {"0", "Job Completed with No Error"},
    {"2", "Unspecified Error"},
    {"4", "Failed"},
    {"5", "Invalid Parameter"},
    {"6", "Target In Use"},
    {"4096", "Method Parameters Checked - Job Started"},
    {"4097", "Unsupported TargetType"},
    {"4099", "Downgrade/reinstall not supported"},
    {"4100", "Not enough memory"},
    {"4106", "Unsupported target (not applicable for target)"},
    {"4108", "Installation to a collection is not supported"},
};

// Of CheckSoftwareIdentity: a check has no job that could be completed.
inline constexpr core::ValueName kCheckReturns[] = {
    {"0", "Completed with No Error"},
    {"2", "Unspecified Error"},
    {"4", "Failed"},
    {"5", "Invalid Parameter"},
    {"6", "Target In Use"},
    {"4096", "Method Parameters Checked - Job Started"},
    {"4097", "Unsupported TargetType"},
    {"4099", "Downgrade/reinstall not supported"},
    {"4100", "Not enough memory"},
    {"4106", "Unsupported target (not applicable for target)"},
    {"4108", "Installation to a collection is not supported"},
};

// Of RequestStateChange.
inline constexpr core::ValueName kStateChangeReturns[] = {
    {"0", "Completed with No Error"},
    {"1", "Not Supported"},
    {"2", "Unknown/Unspecified Error"},
    {"3", "Can NOT complete within Timeout Period"},
    {"4", "Failed"},
    {"5", "Invalid Parameter"},
    {"6", "In Use"},
    {"4096", "Method Parameters Checked - Transition Started"},
    {"4097", "Invalid State Transition"},
    {"4098", "Use of Timeout Parameter Not Supported"},
    {"4099", "Busy"},
};

}  // namespace cim

#endif  // ORVEX_CIM_VALUETABLES_H_
