// Services, and the one that installs software.

#include "cim/SchemaTexts.h"
#include "cim/TextTables.h"
#include "cim/ValueTables.h"

namespace cim {
namespace {

using core::ClassText;
using core::ElementText;
using core::MethodText;

constexpr ElementText kService[] = {
    {"SystemCreationClassName", "The class of the system that hosts the service."},
    {"SystemName", "The name of the system that hosts the service."},
    {"CreationClassName", "The class of which the instance was created."},
    {"Name", "Identifies the service in its system."},
    {"PrimaryOwnerName", "Who the owner of the service is."},
    {"PrimaryOwnerContact", "How the owner of the service is reached."},
    {"StartMode", "Whether the service is started by the system or by a request.", kStartModes},
    {"Started", "Whether the service has been started."},
};

constexpr ElementText kServiceAffectsElement[] = {
    {"AffectedElement", "The element that the service affects."},
    {"AffectingElement", "The service that affects the element."},
    {"ElementEffects", "How the service affects the element.", kServiceElementEffects},
    {"OtherElementEffectsDescriptions",
     "The effects in words, one for each value of ElementEffects."},
    {"AssignedSequence", "The element's place among those that the service affects."},
};

constexpr ElementText kInstallFromIdentity[] = {
    {"Job", "The job that installs the software, where one was started."},
    {"InstallOptions", "How the software is to be installed.", kInstallOptions},
    {"InstallOptionsValues",
     "What the options of the same place in InstallOptions need; empty for one that needs "
     "nothing."},
    {"Source", "The software identity whose software is to be installed."},
    {"Target", "The element that the software is to be installed to."},
    {"Collection", "A collection that the software is to be added to; none is supported here."},
};

constexpr ElementText kInstallFromUri[] = {
    {"Job", "The job that installs the software, where one was started."},
    {"URI", "Where the software is: the URI of a file of the machine."},
    {"Target", "The element that the software is to be installed to."},
    {"InstallOptions", "How the software is to be installed.", kInstallOptions},
    {"InstallOptionsValues",
     "What the options of the same place in InstallOptions need; empty for one that needs "
     "nothing."},
};

constexpr ElementText kCheckIdentity[] = {
    {"Source", "The software identity whose software might be installed."},
    {"Target", "The element that the software might be installed to."},
    {"Collection", "A collection that the software might be added to; none is supported here."},
    {"InstallCharacteristics", "What the installation would take.", kInstallCharacteristics},
};

constexpr MethodText kInstallationMethods[] = {
    {"InstallFromSoftwareIdentity",
     "Starts a job that installs the software of a software identity to a target.",
     kInstallFromIdentity, kInstallReturns},
    {"InstallFromURI", "Starts a job that installs the software of a file to a target.",
     kInstallFromUri, kInstallReturns},
    {"CheckSoftwareIdentity",
     "Says whether the software of a software identity could be installed to a target, and changes "
     "nothing.",
     kCheckIdentity, kCheckReturns},
};

constexpr ElementText kInstallationCapabilities[] = {
    {"SupportedAsynchronousActions", "Which ways of installing start a job.", kAsynchronousActions},
    {"SupportedSynchronousActions", "Which ways of installing are over when the method returns.",
     kAsynchronousActions},
    {"SupportedTargetTypes", "The image types that the service can install."},
    {"SupportedExtendedResourceTypes", "The package formats that the service can install.",
     kExtendedResourceTypes},
    {"CanAddToCollection", "Whether the service can add software to a collection."},
    {"SupportedInstallOptions", "The values of InstallOptions that the service knows.",
     kInstallOptions},
    {"OtherSupportedExtendedResourceTypeDescriptions",
     "The package formats in words, where SupportedExtendedResourceTypes has 1 (Other)."},
    {"SupportedExtendedResourceTypesMajorVersions",
     "The major versions of the package formats, one for each."},
    {"SupportedExtendedResourceTypesMinorVersions",
     "The minor versions of the package formats, one for each."},
    {"SupportedExtendedResourceTypesRevisionNumbers",
     "The revision numbers of the package formats, one for each."},
    {"SupportedExtendedResourceTypesBuildNumbers",
     "The build numbers of the package formats, one for each."},
    {"SupportedURISchemes", "The schemes of URIs that InstallFromURI takes.", kUriSchemes},
};

constexpr ClassText kTexts[] = {
    {"CIM_Service",
     "Something that a system does for its users, and that can be managed.",
     kService,
     {},
     kSchemaVersion,
     true},
    {"CIM_ServiceAffectsElement",
     "A service affects an element.",
     kServiceAffectsElement,
     {},
     kSchemaVersion},
    {"CIM_SoftwareInstallationService",
     "A service that installs and updates software.",
     {},
     kInstallationMethods,
     kSchemaVersion},
    {"CIM_SoftwareInstallationServiceCapabilities",
     "What a service that installs software can do.",
     kInstallationCapabilities,
     {},
     kSchemaVersion},
};

}  // namespace

std::span<const ClassText> getServiceTexts() {
  return kTexts;
}

}  // namespace cim
