// Elements, devices, and the dependencies between them.

#include "cim/SchemaTexts.h"
#include "cim/TextTables.h"
#include "cim/ValueTables.h"

namespace cim {
namespace {

using core::ClassText;
using core::ElementText;
using core::MethodText;

constexpr ElementText kManagedElement[] = {
    {"InstanceID", "Identifies the instance among all of its class and its namespace."},
    {"Caption", "A short description of the element: one line."},
    {"Description", "A description of the element."},
    {"ElementName", "The name by which people know the element."},
    {"Generation", "Counts the changes of the element; NULL, since they are not counted here."},
};

constexpr ElementText kManagedSystemElement[] = {
    {"InstallDate", "When the element was installed; NULL where that is not known."},
    {"Name", "The name by which the element is known."},
    {"OperationalStatus", "How the element works: its present status, the most important first.",
     kOperationalStatuses},
    {"StatusDescriptions",
     "What the values of OperationalStatus mean for the element, one by one."},
    {"Status", "The first value of OperationalStatus as a text; replaced by OperationalStatus."},
    {"HealthState", "How healthy the element is, its subcomponents left out of account.",
     kHealthStates},
    {"PrimaryStatus", "The status of the element at a high level.", kPrimaryStatuses},
    {"DetailedStatus", "What stands behind PrimaryStatus, in more detail.", kDetailedStatuses},
    {"OperatingStatus", "What the element is doing at present.", kOperatingStatuses},
    {"CommunicationStatus", "Whether the element can be reached by what observes it.",
     kCommunicationStatuses},
};

constexpr ElementText kEnabledLogicalElement[] = {
    {"EnabledState", "Whether the element is enabled, disabled, or between the two.",
     kEnabledStates},
    {"OtherEnabledState", "The state of the element in words, where EnabledState is 1 (Other)."},
    {"RequestedState", "The state that was last asked for, whether it has been reached or not.",
     kRequestedStates},
    {"EnabledDefault", "The state in which the element starts.", kEnabledDefaults},
    {"TimeOfLastStateChange", "When EnabledState last changed."},
    {"AvailableRequestedStates", "The states that RequestStateChange accepts for the element.",
     kAvailableStates},
    {"TransitioningToState", "The state towards which the element is changing.", kRequestedStates},
};

constexpr ElementText kStateChangeParameters[] = {
    {"RequestedState", "The state that the element shall take.", kAvailableStates},
    {"Job", "The job that brings the change about, where one was started."},
    {"TimeoutPeriod", "The longest time that the change may take; NULL or 0 sets no limit."},
};

constexpr MethodText kEnabledLogicalElementMethods[] = {
    {"RequestStateChange", "Asks that the element take another state.", kStateChangeParameters,
     kStateChangeReturns},
};

constexpr ElementText kLogicalDevice[] = {
    {"SystemCreationClassName", "The class of the system that the device is part of."},
    {"SystemName", "The name of the system that the device is part of."},
    {"CreationClassName", "The class of which the instance was created."},
    {"DeviceID", "Identifies the device in its system: here by its place on the bus."},
};

constexpr ElementText kDependency[] = {
    {"Antecedent", "What the other depends on."},
    {"Dependent", "What depends on the other."},
};

constexpr ElementText kCapabilities[] = {
    {"InstanceID", "Identifies the capabilities among all instances of their namespace."},
    {"ElementName", "The name by which people know the capabilities."},
};

constexpr ElementText kElementCapabilities[] = {
    {"ManagedElement", "The element that has the capabilities."},
    {"Capabilities", "The capabilities that the element has."},
    {"Characteristics",
     "What the capabilities are for the element: those by default, those in force.",
     kCapabilityCharacteristics},
};

constexpr ClassText kTexts[] = {
    {"CIM_ManagedElement",
     "Anything that is managed: the top of the schema.",
     kManagedElement,
     {},
     kSchemaVersion,
     true},
    {"CIM_ManagedSystemElement",
     "A part of a system, physical or logical, that has a status.",
     kManagedSystemElement,
     {},
     kSchemaVersion,
     true},
    {"CIM_LogicalElement",
     "A part of a system that is not a thing to be touched.",
     {},
     {},
     kSchemaVersion,
     true},
    {"CIM_EnabledLogicalElement", "A logical element that can be enabled and disabled.",
     kEnabledLogicalElement, kEnabledLogicalElementMethods, kSchemaVersion, true},
    {"CIM_LogicalDevice",
     "A device as software sees it, whatever hardware realizes it.",
     kLogicalDevice,
     {},
     kSchemaVersion,
     true},
    {"CIM_Dependency", "One element depends on another.", kDependency, {}, kSchemaVersion, true},
    {"CIM_Capabilities", "What an element can do.", kCapabilities, {}, kSchemaVersion, true},
    {"CIM_ElementCapabilities",
     "An element has capabilities.",
     kElementCapabilities,
     {},
     kSchemaVersion},
};

}  // namespace

std::span<const ClassText> getElementTexts() {
  return kTexts;
}

}  // namespace cim
