// The profiles that a system implements.

#include "cim/SchemaTexts.h"
#include "cim/TextTables.h"
#include "cim/ValueTables.h"

namespace cim {
namespace {

using core::ClassText;
using core::ElementText;

constexpr ElementText kRegisteredSpecification[] = {
    {"InstanceID", "Identifies the registered document among all instances of its namespace."},
    {"SpecificationType", "What kind of document is registered.", kRegisteredSpecificationTypes},
    {"OtherSpecificationType", "The kind in words, where SpecificationType is 1 (Other)."},
    {"RegisteredOrganization", "The organization that published the document.",
     kRegisteredOrganizations},
    {"OtherRegisteredOrganization",
     "The organization in words, where RegisteredOrganization is 1 (Other)."},
    {"RegisteredName", "The name under which the document was registered."},
    {"RegisteredVersion", "The version of the document that is implemented."},
    {"AdvertiseTypes", "How clients learn that the document is implemented.", kAdvertiseTypes},
    {"AdvertiseTypeDescriptions", "The ways in words, where AdvertiseTypes has 1 (Other)."},
};

constexpr ElementText kRegisteredProfile[] = {
    {"SpecificationType", "What kind of document is registered: always 2 (Profile)."},
    {"ImplementedFeatures", "The names of the profile's optional features that are implemented."},
};

constexpr ElementText kConformance[] = {
    {"ConformantStandard", "The profile that the element conforms to."},
    {"ManagedElement", "The element that conforms to the profile."},
};

constexpr ElementText kReferencedSpecification[] = {
    {"Antecedent", "What the other refers to."},
    {"Dependent", "What refers to the other."},
};

constexpr ElementText kReferencedProfile[] = {
    {"Antecedent", "The profile that the other one builds on."},
    {"Dependent", "The profile that builds on the other one."},
};

// Each agent has profiles of its own that it implements.
constexpr ClassText kTexts[] = {
    {"CIM_RegisteredSpecification",
     "A published document that a system implements, a profile for example.",
     kRegisteredSpecification,
     {},
     kSchemaVersion},
    {"CIM_RegisteredProfile",
     "A profile that a system implements: where a client begins.",
     kRegisteredProfile,
     {},
     kSchemaVersion},
    {"CIM_ElementConformsToProfile",
     "An element conforms to a profile.",
     kConformance,
     {},
     kSchemaVersion},
    {"CIM_ReferencedSpecification",
     "One registered document refers to another.",
     kReferencedSpecification,
     {},
     kSchemaVersion},
    {"CIM_ReferencedProfile",
     "One profile builds on another.",
     kReferencedProfile,
     {},
     kSchemaVersion},
    {"Orvex_RegisteredProfile",
     "A management profile that an agent implements: there is one for the Ethernet ports and one "
     "for "
     "software update.",
     {},
     {},
     kOrvexVersion},
    {"Orvex_ElementConformsToProfile",
     "An element of an agent conforms to one of its profiles.",
     {},
     {},
     kOrvexVersion},
};

}  // namespace

std::span<const ClassText> getProfileTexts() {
  return kTexts;
}

}  // namespace cim
