// The schema classes against their tables: which properties of which type a walk shows, in which
// order, and how many property objects an instance holds for them over all levels of its class.

#include <functional>
#include <gmock/gmock.h>
#include <initializer_list>
#include <memory>
#include <ostream>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "Utils/Exception.h"
#include "cim/CIM_AffectedJobElement.h"
#include "cim/CIM_Capabilities.h"
#include "cim/CIM_ConcreteJob.h"
#include "cim/CIM_Dependency.h"
#include "cim/CIM_ElementCapabilities.h"
#include "cim/CIM_ElementConformsToProfile.h"
#include "cim/CIM_EnabledLogicalElement.h"
#include "cim/CIM_Job.h"
#include "cim/CIM_LogicalDevice.h"
#include "cim/CIM_LogicalElement.h"
#include "cim/CIM_ManagedElement.h"
#include "cim/CIM_ManagedSystemElement.h"
#include "cim/CIM_OwningJobElement.h"
#include "cim/CIM_ReferencedProfile.h"
#include "cim/CIM_ReferencedSpecification.h"
#include "cim/CIM_RegisteredProfile.h"
#include "cim/CIM_RegisteredSpecification.h"
#include "cim/CIM_Service.h"
#include "cim/CIM_ServiceAffectsElement.h"
#include "cim/CIM_SoftwareInstallationService.h"
#include "cim/CIM_SoftwareInstallationServiceCapabilities.h"
#include "tests/support/Throws.h"

namespace {

constexpr std::uint32_t kUint8 = 0;
constexpr std::uint32_t kSint8 = 2;
constexpr std::uint32_t kUint16 = 4;
constexpr std::uint32_t kUint16Array = 5;
constexpr std::uint32_t kUint32 = 8;
constexpr std::uint32_t kUint64 = 12;
constexpr std::uint32_t kString = 16;
constexpr std::uint32_t kStringArray = 17;
constexpr std::uint32_t kBoolean = 18;
constexpr std::uint32_t kDatetime = 24;
constexpr std::uint32_t kReference = 26;

using Row = std::pair<std::string, std::uint32_t>;
using Table = std::vector<Row>;

// One table behind another.
Table operator+(Table head, const Table& tail) {
  head.insert(head.end(), tail.begin(), tail.end());
  return head;
}

Table without(const Table& table, const std::set<std::string>& names) {
  Table rest;
  for (const Row& row : table) {
    if (!names.contains(row.first)) {
      rest.push_back(row);
    }
  }
  return rest;
}

Table managedElement() {
  return {{"InstanceID", kString},
          {"Caption", kString},
          {"Description", kString},
          {"ElementName", kString},
          {"Generation", kUint64}};
}

Table managedSystemElement() {
  return Table{{"InstallDate", kDatetime},
               {"Name", kString},
               {"OperationalStatus", kUint16Array},
               {"StatusDescriptions", kStringArray},
               {"Status", kString},
               {"HealthState", kUint16},
               {"PrimaryStatus", kUint16},
               {"DetailedStatus", kUint16},
               {"OperatingStatus", kUint16},
               {"CommunicationStatus", kUint16}} +
         managedElement();
}

Table enabledLogicalElement() {
  return Table{{"EnabledState", kUint16},
               {"OtherEnabledState", kString},
               {"RequestedState", kUint16},
               {"EnabledDefault", kUint16},
               {"TimeOfLastStateChange", kDatetime},
               {"AvailableRequestedStates", kUint16Array},
               {"TransitioningToState", kUint16}} +
         managedSystemElement();
}

Table service() {
  return Table{{"SystemCreationClassName", kString},
               {"SystemName", kString},
               {"CreationClassName", kString},
               {"Name", kString},
               {"PrimaryOwnerName", kString},
               {"PrimaryOwnerContact", kString},
               {"StartMode", kString},
               {"Started", kBoolean}} +
         without(enabledLogicalElement(), {"Name"});
}

Table capabilities() {
  return {{"InstanceID", kString},
          {"ElementName", kString},
          {"Caption", kString},
          {"Description", kString},
          {"Generation", kUint64}};
}

Table softwareInstallationServiceCapabilities() {
  return Table{{"SupportedAsynchronousActions", kUint16Array},
               {"SupportedSynchronousActions", kUint16Array},
               {"SupportedTargetTypes", kStringArray},
               {"SupportedExtendedResourceTypes", kUint16Array},
               {"CanAddToCollection", kBoolean},
               {"SupportedInstallOptions", kUint16Array},
               {"OtherSupportedExtendedResourceTypeDescriptions", kStringArray},
               {"SupportedExtendedResourceTypesMajorVersions", kUint16Array},
               {"SupportedExtendedResourceTypesMinorVersions", kUint16Array},
               {"SupportedExtendedResourceTypesRevisionNumbers", kUint16Array},
               {"SupportedExtendedResourceTypesBuildNumbers", kUint16Array},
               {"SupportedURISchemes", kUint16Array}} +
         capabilities();
}

Table registeredSpecification() {
  return {{"InstanceID", kString},
          {"SpecificationType", kUint16},
          {"OtherSpecificationType", kString},
          {"RegisteredOrganization", kUint16},
          {"OtherRegisteredOrganization", kString},
          {"RegisteredName", kString},
          {"RegisteredVersion", kString},
          {"AdvertiseTypes", kUint16Array},
          {"AdvertiseTypeDescriptions", kStringArray},
          {"Caption", kString},
          {"Description", kString},
          {"ElementName", kString},
          {"Generation", kUint64}};
}

Table registeredProfile() {
  return Table{{"SpecificationType", kUint16}, {"ImplementedFeatures", kStringArray}} +
         without(registeredSpecification(), {"SpecificationType"});
}

Table dependency() {
  return {{"Antecedent", kReference}, {"Dependent", kReference}};
}

Table elementConformsToProfile() {
  return {{"ConformantStandard", kReference}, {"ManagedElement", kReference}};
}

Table elementCapabilities() {
  return {{"ManagedElement", kReference},
          {"Capabilities", kReference},
          {"Characteristics", kUint16Array}};
}

Table affectedJobElement() {
  return {{"AffectedElement", kReference},
          {"AffectingElement", kReference},
          {"ElementEffects", kUint16Array},
          {"OtherElementEffectsDescriptions", kStringArray}};
}

Table serviceAffectsElement() {
  return affectedJobElement() + Table{{"AssignedSequence", kUint16}};
}

Table owningJobElement() {
  return {{"OwningElement", kReference}, {"OwnedElement", kReference}};
}

Table job() {
  return Table{{"JobStatus", kString},
               {"TimeSubmitted", kDatetime},
               {"ScheduledStartTime", kDatetime},
               {"StartTime", kDatetime},
               {"ElapsedTime", kDatetime},
               {"JobRunTimes", kUint32},
               {"RunMonth", kUint8},
               {"RunDay", kSint8},
               {"RunDayOfWeek", kSint8},
               {"RunStartInterval", kDatetime},
               {"LocalOrUtcTime", kUint16},
               {"UntilTime", kDatetime},
               {"Notify", kString},
               {"Owner", kString},
               {"Priority", kUint32},
               {"PercentComplete", kUint16},
               {"DeleteOnCompletion", kBoolean},
               {"ErrorCode", kUint16},
               {"ErrorDescription", kString},
               {"RecoveryAction", kUint16},
               {"OtherRecoveryAction", kString}} +
         managedSystemElement();
}

Table concreteJob() {
  return Table{{"InstanceID", kString},
               {"Name", kString},
               {"JobState", kUint16},
               {"TimeOfLastStateChange", kDatetime},
               {"TimeBeforeRemoval", kDatetime}} +
         without(job(), {"Name", "InstanceID"});
}

// A schema class that can be built.
template <class Schema>
class Concrete : public Schema {
 public:
  [[nodiscard]] std::string getClassName() const override { return "Test_Concrete"; }
};

struct SchemaCase {
  const char* name;
  std::function<std::unique_ptr<core::CimInstance>()> make;
  Table table;
  std::size_t properties;  // as the tables number them
  std::size_t members;     // those of all levels, overridden ones included
};

void PrintTo(const SchemaCase& schema, std::ostream* stream) {
  *stream << schema.name;
}

template <class Schema, class Base>
SchemaCase schemaCase(const char* name, Table table, std::size_t properties, std::size_t members) {
  static_assert(std::is_base_of_v<Base, Schema> && !std::is_same_v<Base, Schema>);
  return {name, [] { return std::make_unique<Concrete<Schema>>(); }, std::move(table), properties,
          members};
}

class Schema : public testing::TestWithParam<SchemaCase> {
 protected:
  template <class Visit>
  void forEachProperty(Visit visit) {
    core::CimPropertyList::Iterator cursor = m_instance->getProperties().iterator();
    for (core::CimProperty* property = cursor.first(); property != nullptr;
         property = cursor.next()) {
      visit(*property);
    }
  }

  std::unique_ptr<core::CimInstance> m_instance = GetParam().make();
};

TEST_P(Schema, ListsThePropertiesOfItsTable) {
  Table listed;
  forEachProperty([&](const core::CimProperty& property) {
    listed.emplace_back(property.getName(), property.getType());
  });

  EXPECT_EQ(listed, GetParam().table);
  EXPECT_EQ(listed.size(), GetParam().properties);
}

TEST_P(Schema, ListsEachNameOnceAndFindsThatProperty) {
  std::set<std::string> names;
  forEachProperty([&](core::CimProperty& property) {
    EXPECT_TRUE(names.insert(property.getName()).second) << property.getName();
    EXPECT_EQ(m_instance->getProperty(property.getName()), &property);
    EXPECT_EQ(property.getOwner(), m_instance.get());
    EXPECT_FALSE(property.isOverridden());
  });

  EXPECT_EQ(names.size(), GetParam().properties);
}

TEST_P(Schema, HoldsThePropertiesOfEveryLevelAsMembersOfTheirOwn) {
  EXPECT_EQ(m_instance->getProperties().size(), GetParam().members);
}

TEST_P(Schema, HasOnlyNullPropertiesThatAreNoKeysAndFixedAtFirst) {
  forEachProperty([](const core::CimProperty& property) {
    EXPECT_TRUE(property.isNull()) << property.getName();
    EXPECT_FALSE(property.isKey()) << property.getName();
    EXPECT_FALSE(property.isModifyEnabled()) << property.getName();
  });
  EXPECT_FALSE(m_instance->isDeleted());
  EXPECT_EQ(m_instance->getPath(), "Test_Concrete.");
}

TEST_P(Schema, SupportsNoMethod) {
  EXPECT_THROW(m_instance->InstallFromURI(nullptr, nullptr, nullptr), utils::ENotSupported);
  EXPECT_THROW(m_instance->InstallFromSoftwareIdentity(nullptr, nullptr, nullptr),
               utils::ENotSupported);
  EXPECT_THROW(m_instance->CheckSoftwareIdentity(nullptr, nullptr, nullptr), utils::ENotSupported);
  EXPECT_THROW(m_instance->invokeMethod("InstallFromURI", nullptr, nullptr, nullptr),
               utils::ENotSupported);
}

TEST(SchemaMethods, AreNotSupportedByTheClassThatDeclaresThem) {
  const auto refuse = [](core::CimInstance& instance, const std::string& name) {
    EXPECT_THAT(
        [&] { instance.invokeMethod(name, nullptr, nullptr, nullptr); },
        test::ThrowsExactly<utils::ENotSupported>("Quorvel: ENotSupported:Method is not supported"))
        << name;
  };
  Concrete<CIM_Service> service;
  Concrete<CIM_SoftwareInstallationService> installationService;
  Concrete<CIM_LogicalDevice> device;
  Concrete<CIM_ConcreteJob> job;
  for (core::CimInstance* instance :
       std::initializer_list<core::CimInstance*>{&service, &installationService, &device, &job}) {
    refuse(*instance, "RequestStateChange");
  }
  for (const char* name :
       {"InstallFromSoftwareIdentity", "InstallFromURI", "CheckSoftwareIdentity"}) {
    refuse(installationService, name);
  }
}

TEST_P(Schema, PrintsNewReferencesAsEmptyTexts) {
  forEachProperty([](const core::CimProperty& property) {
    if (property.getType() == kReference) {
      EXPECT_EQ(property.toString(), "") << property.getName();
    }
  });
}

// The members of a level are its whole table; those of an instance, the tables of all levels.
INSTANTIATE_TEST_SUITE_P(
    Classes, Schema,
    testing::Values(
        schemaCase<CIM_ManagedElement, core::CimInstance>("CIM_ManagedElement", managedElement(), 5,
                                                          5),
        schemaCase<CIM_ManagedSystemElement, CIM_ManagedElement>("CIM_ManagedSystemElement",
                                                                 managedSystemElement(), 15, 20),
        schemaCase<CIM_LogicalElement, CIM_ManagedSystemElement>("CIM_LogicalElement",
                                                                 managedSystemElement(), 15, 35),
        schemaCase<CIM_EnabledLogicalElement, CIM_LogicalElement>("CIM_EnabledLogicalElement",
                                                                  enabledLogicalElement(), 22, 57),
        schemaCase<CIM_Service, CIM_EnabledLogicalElement>("CIM_Service", service(), 29, 86),
        schemaCase<CIM_SoftwareInstallationService, CIM_Service>("CIM_SoftwareInstallationService",
                                                                 service(), 29, 115),
        schemaCase<CIM_Capabilities, CIM_ManagedElement>("CIM_Capabilities", capabilities(), 5, 10),
        schemaCase<CIM_SoftwareInstallationServiceCapabilities, CIM_Capabilities>(
            "CIM_SoftwareInstallationServiceCapabilities",
            softwareInstallationServiceCapabilities(), 17, 27),
        schemaCase<CIM_RegisteredSpecification, CIM_ManagedElement>("CIM_RegisteredSpecification",
                                                                    registeredSpecification(), 13,
                                                                    18),
        schemaCase<CIM_RegisteredProfile, CIM_RegisteredSpecification>("CIM_RegisteredProfile",
                                                                       registeredProfile(), 14, 32),
        schemaCase<CIM_Dependency, core::CimInstance>("CIM_Dependency", dependency(), 2, 2),
        schemaCase<CIM_ReferencedSpecification, CIM_Dependency>("CIM_ReferencedSpecification",
                                                                dependency(), 2, 4),
        schemaCase<CIM_ReferencedProfile, CIM_ReferencedSpecification>("CIM_ReferencedProfile",
                                                                       dependency(), 2, 6),
        schemaCase<CIM_ElementConformsToProfile, core::CimInstance>("CIM_ElementConformsToProfile",
                                                                    elementConformsToProfile(), 2,
                                                                    2),
        schemaCase<CIM_ElementCapabilities, core::CimInstance>("CIM_ElementCapabilities",
                                                               elementCapabilities(), 3, 3),
        schemaCase<CIM_ServiceAffectsElement, core::CimInstance>("CIM_ServiceAffectsElement",
                                                                 serviceAffectsElement(), 5, 5),
        schemaCase<CIM_AffectedJobElement, core::CimInstance>("CIM_AffectedJobElement",
                                                              affectedJobElement(), 4, 4),
        schemaCase<CIM_OwningJobElement, core::CimInstance>("CIM_OwningJobElement",
                                                            owningJobElement(), 2, 2),
        schemaCase<CIM_Job, CIM_LogicalElement>("CIM_Job", job(), 36, 71),
        schemaCase<CIM_ConcreteJob, CIM_Job>("CIM_ConcreteJob", concreteJob(), 39, 110)));

template <class Reference, class Target>
constexpr bool pointsAt = std::is_same_v<Reference, core::CimPropertyRefT<Target>>;

TEST(SchemaReferences, PointAtTheClassesOfTheirTables) {
  EXPECT_TRUE((pointsAt<decltype(CIM_Dependency::Antecedent), CIM_ManagedElement>));
  EXPECT_TRUE((pointsAt<decltype(CIM_Dependency::Dependent), CIM_ManagedElement>));
  EXPECT_TRUE(
      (pointsAt<decltype(CIM_ReferencedSpecification::Antecedent), CIM_RegisteredSpecification>));
  EXPECT_TRUE(
      (pointsAt<decltype(CIM_ReferencedSpecification::Dependent), CIM_RegisteredSpecification>));
  EXPECT_TRUE((pointsAt<decltype(CIM_ReferencedProfile::Antecedent), CIM_RegisteredProfile>));
  EXPECT_TRUE((pointsAt<decltype(CIM_ReferencedProfile::Dependent), CIM_RegisteredProfile>));
  EXPECT_TRUE((
      pointsAt<decltype(CIM_ElementConformsToProfile::ConformantStandard), CIM_RegisteredProfile>));
  EXPECT_TRUE(
      (pointsAt<decltype(CIM_ElementConformsToProfile::ManagedElement), CIM_ManagedElement>));
  EXPECT_TRUE((pointsAt<decltype(CIM_ElementCapabilities::ManagedElement), CIM_ManagedElement>));
  EXPECT_TRUE((pointsAt<decltype(CIM_ElementCapabilities::Capabilities), CIM_Capabilities>));
  EXPECT_TRUE((pointsAt<decltype(CIM_ServiceAffectsElement::AffectedElement), CIM_ManagedElement>));
  EXPECT_TRUE((pointsAt<decltype(CIM_ServiceAffectsElement::AffectingElement), CIM_Service>));
  EXPECT_TRUE((pointsAt<decltype(CIM_AffectedJobElement::AffectedElement), CIM_ManagedElement>));
  EXPECT_TRUE((pointsAt<decltype(CIM_AffectedJobElement::AffectingElement), CIM_Job>));
  EXPECT_TRUE((pointsAt<decltype(CIM_OwningJobElement::OwningElement), CIM_ManagedElement>));
  EXPECT_TRUE((pointsAt<decltype(CIM_OwningJobElement::OwnedElement), CIM_Job>));
}

TEST(SchemaLevels, KeepTheirOwnMembersUnderOneName) {
  Concrete<CIM_ConcreteJob> job;
  job.Name.setValue("derived");
  job.CIM_Job::Name.setValue("of the job");
  job.CIM_ManagedSystemElement::Name.setValue("of the element");

  EXPECT_EQ(job.getProperty("Name"), &job.Name);
  EXPECT_EQ(job.getProperty("Name")->toString(), "derived");
  EXPECT_TRUE(job.CIM_Job::Name.isOverridden());
  EXPECT_TRUE(job.CIM_ManagedSystemElement::Name.isOverridden());
}

TEST(SchemaNumbers, OfTheJobNeverPassVerification) {
  Concrete<CIM_ConcreteJob> job;
  for (core::CimProperty* property : std::initializer_list<core::CimProperty*>{
           &job.JobRunTimes, &job.Priority, &job.RunDay, &job.RunDayOfWeek}) {
    property->setModifyEnabled(true);
    EXPECT_THROW(property->verify(property), utils::EForbidden) << property->getName();
  }
  EXPECT_NO_THROW(job.RunMonth.verify(&job.RunMonth));
}

}  // namespace
