// The standard classes as they are declared: what each derives from, its keys, the classes that its
// references lead to, its methods.

#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "cim/CIM_AffectedJobElement.h"
#include "cim/CIM_ConcreteJob.h"
#include "cim/CIM_ElementCapabilities.h"
#include "cim/CIM_ElementConformsToProfile.h"
#include "cim/CIM_LogicalDevice.h"
#include "cim/CIM_OwningJobElement.h"
#include "cim/CIM_ReferencedProfile.h"
#include "cim/CIM_ServiceAffectsElement.h"
#include "cim/CIM_SoftwareInstallationService.h"
#include "cim/CIM_SoftwareInstallationServiceCapabilities.h"
#include "cim/MethodSignatures.h"
#include "core/DeclareClass.h"

namespace {

using core::ClassDeclaration;
using core::MethodDeclaration;
using core::ParameterDeclaration;
using core::PropertyDeclaration;
using testing::ElementsAre;
using testing::IsEmpty;

class Declaration : public testing::Test {
 protected:
  // Returns the declarations of the most derived standard classes and of all above them.
  static const core::CimSchema& schema() {
    static const auto* schema = [] {
      auto* declared = new core::CimSchema;
      core::declareClass<CIM_SoftwareInstallationService>(*declared);
      core::declareClass<CIM_SoftwareInstallationServiceCapabilities>(*declared);
      core::declareClass<CIM_LogicalDevice>(*declared);
      core::declareClass<CIM_RegisteredProfile>(*declared);
      core::declareClass<CIM_ConcreteJob>(*declared);
      core::declareClass<CIM_ReferencedProfile>(*declared);
      core::declareClass<CIM_ElementConformsToProfile>(*declared);
      core::declareClass<CIM_ElementCapabilities>(*declared);
      core::declareClass<CIM_ServiceAffectsElement>(*declared);
      core::declareClass<CIM_AffectedJobElement>(*declared);
      core::declareClass<CIM_OwningJobElement>(*declared);
      return declared;
    }();
    return *schema;
  }

  static const ClassDeclaration& get(const std::string& name) { return *schema().find(name); }

  static std::vector<std::string> chainOf(const std::string& name) {
    std::vector<std::string> names;
    for (const ClassDeclaration* superclass : schema().getSuperclasses(name)) {
      names.push_back(superclass->name);
    }
    return names;
  }

  static std::vector<std::string> keysOf(const std::string& name) {
    std::vector<std::string> names;
    for (const PropertyDeclaration& property : get(name).properties) {
      if (property.isKey) {
        names.push_back(property.name);
      }
    }
    return names;
  }

  // Returns "name → class" of each reference of a class.
  static std::vector<std::string> referencesOf(const std::string& name) {
    std::vector<std::string> texts;
    for (const PropertyDeclaration& property : get(name).properties) {
      if (property.type == core::kCimReference) {
        texts.push_back(property.name + " → " + property.referenceClass);
      }
    }
    return texts;
  }
};

TEST_F(Declaration, HasTheTreeOfTheStandard) {
  EXPECT_THAT(chainOf("CIM_SoftwareInstallationService"),
              ElementsAre("CIM_Service", "CIM_EnabledLogicalElement", "CIM_LogicalElement",
                          "CIM_ManagedSystemElement", "CIM_ManagedElement"));
  EXPECT_THAT(chainOf("CIM_LogicalDevice"),
              ElementsAre("CIM_EnabledLogicalElement", "CIM_LogicalElement",
                          "CIM_ManagedSystemElement", "CIM_ManagedElement"));
  EXPECT_THAT(chainOf("CIM_ConcreteJob"),
              ElementsAre("CIM_Job", "CIM_LogicalElement", "CIM_ManagedSystemElement",
                          "CIM_ManagedElement"));
  EXPECT_THAT(chainOf("CIM_SoftwareInstallationServiceCapabilities"),
              ElementsAre("CIM_Capabilities", "CIM_ManagedElement"));
  EXPECT_THAT(chainOf("CIM_RegisteredProfile"),
              ElementsAre("CIM_RegisteredSpecification", "CIM_ManagedElement"));
  EXPECT_THAT(chainOf("CIM_ReferencedProfile"),
              ElementsAre("CIM_ReferencedSpecification", "CIM_Dependency"));
  EXPECT_EQ(schema().getSubclasses("").size(), 7u);
  EXPECT_EQ(schema().getDescendants("").size(), 21u);
}

TEST_F(Declaration, HasTheKeysOfTheStandard) {
  EXPECT_THAT(keysOf("CIM_Service"),
              ElementsAre("SystemCreationClassName", "SystemName", "CreationClassName", "Name"));
  EXPECT_THAT(keysOf("CIM_SoftwareInstallationService"),
              ElementsAre("SystemCreationClassName", "SystemName", "CreationClassName", "Name"));
  EXPECT_THAT(keysOf("CIM_LogicalDevice"), ElementsAre("SystemCreationClassName", "SystemName",
                                                       "CreationClassName", "DeviceID"));
  for (const char* name :
       {"CIM_Capabilities", "CIM_SoftwareInstallationServiceCapabilities",
        "CIM_RegisteredSpecification", "CIM_RegisteredProfile", "CIM_ConcreteJob"}) {
    EXPECT_THAT(keysOf(name), ElementsAre("InstanceID")) << name;
  }
  for (const char* name :
       {"CIM_ManagedElement", "CIM_LogicalElement", "CIM_EnabledLogicalElement", "CIM_Job"}) {
    EXPECT_THAT(keysOf(name), IsEmpty()) << name;
  }
}

TEST_F(Declaration, KeysAssociationsByTheirReferences) {
  std::size_t associations = 0;
  for (const ClassDeclaration* declaration : schema().getDescendants("")) {
    for (const PropertyDeclaration& property : declaration->properties) {
      if (declaration->isAssociation) {
        EXPECT_EQ(property.isKey, property.type == core::kCimReference)
            << declaration->name << "." << property.name;
        ++associations;
      }
    }
  }
  EXPECT_GT(associations, 0u);
}

TEST_F(Declaration, LeadsReferencesToTheClassesOfTheirTables) {
  EXPECT_THAT(referencesOf("CIM_Dependency"),
              ElementsAre("Antecedent → CIM_ManagedElement", "Dependent → CIM_ManagedElement"));
  EXPECT_THAT(referencesOf("CIM_ReferencedSpecification"),
              ElementsAre("Antecedent → CIM_RegisteredSpecification",
                          "Dependent → CIM_RegisteredSpecification"));
  EXPECT_THAT(
      referencesOf("CIM_ReferencedProfile"),
      ElementsAre("Antecedent → CIM_RegisteredProfile", "Dependent → CIM_RegisteredProfile"));
  EXPECT_THAT(referencesOf("CIM_ElementConformsToProfile"),
              ElementsAre("ConformantStandard → CIM_RegisteredProfile",
                          "ManagedElement → CIM_ManagedElement"));
  EXPECT_THAT(
      referencesOf("CIM_ElementCapabilities"),
      ElementsAre("ManagedElement → CIM_ManagedElement", "Capabilities → CIM_Capabilities"));
  EXPECT_THAT(
      referencesOf("CIM_ServiceAffectsElement"),
      ElementsAre("AffectedElement → CIM_ManagedElement", "AffectingElement → CIM_Service"));
  EXPECT_THAT(referencesOf("CIM_AffectedJobElement"),
              ElementsAre("AffectedElement → CIM_ManagedElement", "AffectingElement → CIM_Job"));
  EXPECT_THAT(referencesOf("CIM_OwningJobElement"),
              ElementsAre("OwningElement → CIM_ManagedElement", "OwnedElement → CIM_Job"));
}

TEST_F(Declaration, GivesPropertiesTheLastClassThatListsThem) {
  const ClassDeclaration& device = get("CIM_LogicalDevice");
  EXPECT_EQ(device.findProperty("DeviceID")->origin, "CIM_LogicalDevice");
  EXPECT_EQ(device.findProperty("Caption")->origin, "CIM_EnabledLogicalElement");
  EXPECT_EQ(get("CIM_ConcreteJob").findProperty("Caption")->origin, "CIM_ConcreteJob");
  EXPECT_EQ(get("CIM_ManagedElement").findProperty("Caption")->origin, "CIM_ManagedElement");
}

TEST_F(Declaration, HasTheInstallationMethodsOnTheService) {
  std::vector<std::string> names;
  for (const MethodDeclaration& method : get("CIM_SoftwareInstallationService").methods) {
    names.push_back(method.origin + "." + method.name);
  }
  EXPECT_THAT(names, ElementsAre("CIM_EnabledLogicalElement.RequestStateChange",
                                 "CIM_SoftwareInstallationService.InstallFromSoftwareIdentity",
                                 "CIM_SoftwareInstallationService.InstallFromURI",
                                 "CIM_SoftwareInstallationService.CheckSoftwareIdentity"));
}

TEST_F(Declaration, TellsTheStateChangeOfAJobFromThatOfAnElement) {
  const ParameterDeclaration state{"RequestedState", core::kCimUint16, core::ParameterDirection::In,
                                   ""};
  const ParameterDeclaration timeout{"TimeoutPeriod", core::kCimDatetime,
                                     core::ParameterDirection::In, ""};
  const ParameterDeclaration job{"Job", core::kCimReference, core::ParameterDirection::Job,
                                 "CIM_ConcreteJob"};
  EXPECT_THAT(get("CIM_ConcreteJob").findMethod("RequestStateChange")->parameters,
              ElementsAre(state, timeout));
  EXPECT_THAT(get("CIM_LogicalDevice").findMethod("RequestStateChange")->parameters,
              ElementsAre(state, job, timeout));
  EXPECT_THAT(get("CIM_Job").methods, IsEmpty());
}

TEST_F(Declaration, HandsOutTheJobOfAnInstallationBesideItsArguments) {
  const MethodDeclaration& method =
      *get("CIM_SoftwareInstallationService").findMethod("InstallFromURI");
  EXPECT_EQ(method.returnType, core::kCimUint32);
  ASSERT_EQ(method.parameters.size(), 5u);
  EXPECT_EQ(method.parameters[0].direction, core::ParameterDirection::Job);
  EXPECT_EQ(method.parameters[1],
            (ParameterDeclaration{"URI", core::kCimString, core::ParameterDirection::In, ""}));
  EXPECT_EQ(method.parameters[2].referenceClass, "CIM_ManagedElement");
}

TEST(MethodSignatures, AreFoundByTheNamesOfTheInstallationMethods) {
  ASSERT_NE(cim::findMethod("InstallFromURI"), nullptr);
  EXPECT_EQ(cim::findMethod("InstallFromURI")->name, "InstallFromURI");
  EXPECT_EQ(cim::findMethod("installfromuri"), nullptr);
  EXPECT_EQ(cim::findMethod("RequestStateChange"), nullptr);
}

TEST(MethodReturn, HasTheMeaningOfItsMethod) {
  EXPECT_EQ(cim::describeReturn("InstallFromURI", 4097), "Unsupported TargetType");
  EXPECT_EQ(cim::describeReturn("RequestStateChange", 4097), "Invalid State Transition");
  EXPECT_EQ(cim::describeReturn("InstallFromSoftwareIdentity", 0), "Job Completed with No Error");
  EXPECT_EQ(cim::describeReturn("CheckSoftwareIdentity", 0), "Completed with No Error");
  EXPECT_EQ(cim::describeReturn("CheckSoftwareIdentity", 5), "Invalid Parameter");
  EXPECT_EQ(cim::describeReturn("requeststatechange", 6), "In Use");
}

TEST(MethodReturn, HasNoMeaningThatNobodyKnows) {
  EXPECT_EQ(cim::describeReturn("InstallFromURI", 77), "Unknown return code");
  EXPECT_EQ(cim::describeReturn("Dance", 0), "");
}

}  // namespace
