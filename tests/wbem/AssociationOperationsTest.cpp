#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "tests/wbem/LookingFixture.h"

namespace {

using test::className;
using test::deviceName;
using test::fullPath;
using test::given;
using test::IsError;
using test::localPath;
using test::objectName;
using test::profileName;
using test::returned;
using test::texts;
using testing::_;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kFirst = "Test_Device.InstanceID=\"a\",Slot=1";
constexpr const char* kPort = "Test_Port.InstanceID=\"p\",Slot=1";
constexpr const char* kProfile = "Test_RegisteredProfile.InstanceID=\"profile\"";

std::string pathOf(const std::string& nameSpace, const std::string& name) {
  return "<OBJECTPATH>" + fullPath(nameSpace, name) + "</OBJECTPATH>";
}

std::string key(const std::string& name, const std::string& nameSpace, const std::string& target) {
  return "<KEYBINDING NAME=\"" + name + "\"><VALUE.REFERENCE><LOCALINSTANCEPATH>" +
         localPath(nameSpace, target) + "</LOCALINSTANCEPATH></VALUE.REFERENCE></KEYBINDING>";
}

std::string linkName(const std::string& dependent) {
  return "<INSTANCENAME CLASSNAME=\"Test_Link\">" + key("Antecedent", "test", deviceName("a", 1)) +
         key("Dependent", "test", dependent) + "</INSTANCENAME>";
}

// Returns the name as it stands in a reference that crosses the namespaces, which holds a path: the
// types of the keys are not said.
std::string withoutTypes(std::string name) {
  for (const std::string type : {" TYPE=\"string\"", " TYPE=\"uint16\""}) {
    for (std::size_t place = name.find(type); place != std::string::npos; place = name.find(type)) {
      name.erase(place, type.size());
    }
  }
  return name;
}

std::string conformanceName() {
  return "<INSTANCENAME CLASSNAME=\"Test_ElementConformsToProfile\">" +
         key("ConformantStandard", "interop", withoutTypes(profileName())) +
         key("ManagedElement", "test", withoutTypes(deviceName("a", 1))) + "</INSTANCENAME>";
}

std::string classPath(const std::string& name, const std::string& nameSpace = "test") {
  return "<OBJECTPATH><CLASSPATH><NAMESPACEPATH><HOST>server1</HOST><LOCALNAMESPACEPATH>"
         "<NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"" +
         nameSpace + "\"/></LOCALNAMESPACEPATH></NAMESPACEPATH><CLASSNAME NAME=\"" + name +
         "\"/></CLASSPATH></OBJECTPATH>";
}

class AssociationOperations : public test::ServerFixture {
 protected:
  std::string associatorNames(const std::string& path, std::vector<cimxml::Parameter> filters = {},
                              const std::string& nameSpace = test::kAgentsNamespace) {
    filters.push_back(given("ObjectName", objectName(path)));
    return ask("AssociatorNames", std::move(filters), nameSpace);
  }

  std::string referenceNames(const std::string& path, std::vector<cimxml::Parameter> filters = {},
                             const std::string& nameSpace = test::kAgentsNamespace) {
    filters.push_back(given("ObjectName", objectName(path)));
    return ask("ReferenceNames", std::move(filters), nameSpace);
  }

  const std::string m_toPort = pathOf("test", deviceName("p", 1, "Test_Port"));
  const std::string m_toSecond = pathOf("test", deviceName("b", 2));
  const std::string m_toProfile = pathOf("interop", profileName());
  const std::string m_linkToPort = pathOf("test", linkName(deviceName("p", 1, "Test_Port")));
  const std::string m_linkToSecond = pathOf("test", linkName(deviceName("b", 2)));
  const std::string m_conformance = pathOf("test", conformanceName());
};

// -- instances --

TEST_F(AssociationOperations, NameWhatIsAssociated) {
  EXPECT_EQ(associatorNames(kFirst), returned(m_toProfile + m_toPort + m_toSecond));
  EXPECT_EQ(associatorNames(kPort), returned(pathOf("test", deviceName("a", 1))));
}

TEST_F(AssociationOperations, NameTheAssociations) {
  EXPECT_EQ(referenceNames(kFirst), returned(m_conformance + m_linkToPort + m_linkToSecond));
  EXPECT_EQ(referenceNames(kPort), returned(m_linkToPort));
}

TEST_F(AssociationOperations, FilterAssociators) {
  EXPECT_EQ(associatorNames(kFirst, {given("AssocClass", className("cim_dependency"))}),
            returned(m_toPort + m_toSecond));
  EXPECT_EQ(associatorNames(kFirst, {given("ResultClass", className("Test_Port"))}),
            returned(m_toPort));
  EXPECT_EQ(associatorNames(kFirst, {given("ResultClass", className("test_device"))}),
            returned(m_toPort + m_toSecond));
  EXPECT_EQ(associatorNames(kFirst, {given("ResultClass", className("CIM_RegisteredProfile"))}),
            returned(m_toProfile));
  EXPECT_EQ(associatorNames(kFirst, {given("Role", "antecedent")}),
            returned(m_toPort + m_toSecond));
  EXPECT_EQ(associatorNames(kFirst, {given("Role", "Dependent")}), returned(""));
  EXPECT_EQ(associatorNames(kFirst, {given("ResultRole", "CONFORMANTSTANDARD")}),
            returned(m_toProfile));
  EXPECT_EQ(associatorNames(kFirst, {given("Role", "Nothing")}), returned(""));
  EXPECT_EQ(associatorNames(kFirst, {given("AssocClass", className("Test_Device"))}), returned(""));
  EXPECT_EQ(associatorNames(kFirst,
                            {given("AssocClass", cimxml::Value()), given("Role", cimxml::Value())}),
            returned(m_toProfile + m_toPort + m_toSecond));
}

TEST_F(AssociationOperations, FilterReferences) {
  EXPECT_EQ(referenceNames(kFirst, {given("ResultClass", className("Test_Link"))}),
            returned(m_linkToPort + m_linkToSecond));
  EXPECT_EQ(referenceNames(kFirst, {given("Role", "ManagedElement")}), returned(m_conformance));
  EXPECT_EQ(referenceNames(kPort, {given("Role", "Antecedent")}), returned(""));
}

TEST_F(AssociationOperations, GiveTheObjectsWithTheirPaths) {
  EXPECT_EQ(ask("Associators", {given("ObjectName", objectName(kFirst)),
                                given("ResultClass", className("Test_Port")),
                                given("PropertyList", texts({"Speed"}))}),
            returned("<VALUE.OBJECTWITHPATH>" + fullPath("test", deviceName("p", 1, "Test_Port")) +
                     "<INSTANCE CLASSNAME=\"Test_Port\"><PROPERTY NAME=\"Speed\" TYPE=\"uint64\">"
                     "<VALUE>25000000000</VALUE></PROPERTY></INSTANCE></VALUE.OBJECTWITHPATH>"));
  EXPECT_EQ(ask("References",
                {given("ObjectName", objectName(kPort)), given("PropertyList", texts({"Kind"}))}),
            returned("<VALUE.OBJECTWITHPATH>" +
                     fullPath("test", linkName(deviceName("p", 1, "Test_Port"))) +
                     "<INSTANCE CLASSNAME=\"Test_Link\"><PROPERTY NAME=\"Kind\" TYPE=\"string\">"
                     "<VALUE>owns</VALUE></PROPERTY></INSTANCE></VALUE.OBJECTWITHPATH>"));
}

TEST_F(AssociationOperations, GiveAnObjectOnceThatIsAssociatedTwice) {
  auto instances = m_agent.devices.getInstances();
  core::CimInstance* first = instances.first();
  core::CimInstance* second = instances.next();
  test::ModelAgent::add(m_agent.links, std::make_unique<test::Link>(second, first));
  EXPECT_EQ(associatorNames(kFirst, {given("AssocClass", className("Test_Link"))}),
            returned(m_toPort + m_toSecond));
}

TEST_F(AssociationOperations, FollowReferencesThatHoldATextAlone) {
  auto& link = test::ModelAgent::add(m_agent.links, std::make_unique<test::Link>());
  link.Antecedent.setText("test_PORT.slot=1,InstanceID=\"p\"");
  link.Dependent.setText("Test_Device.InstanceID=\"b\",Slot=2");
  EXPECT_EQ(associatorNames(kPort, {given("Role", "Antecedent")}), returned(m_toSecond));

  link.Dependent.setText("Test_Device.InstanceID=\"gone\",Slot=2");
  EXPECT_EQ(associatorNames(kPort, {given("Role", "Antecedent")}), returned(""));
  link.Dependent.setText("nowhere");
  EXPECT_EQ(associatorNames(kPort, {given("Role", "Antecedent")}), returned(""));
}

// A provider that makes its instances anew ends those of its last enumeration.
TEST_F(AssociationOperations, UseNoInstanceOfAnEarlierEnumeration) {
  m_agent.links.onEnumeration = [this] {
    m_agent.links.clear();
    m_agent.devices.clear();
    auto& first = test::ModelAgent::add(m_agent.devices, std::make_unique<test::Device>("a", 1));
    auto& second = test::ModelAgent::add(m_agent.devices, std::make_unique<test::Device>("b", 2));
    test::ModelAgent::add(m_agent.links, std::make_unique<test::Link>(&first, &second));
    // What still refers to the devices of before is made anew as well.
    m_agent.conformances.clear();
  };
  EXPECT_EQ(associatorNames(kFirst), returned(m_toProfile + m_toSecond));
  EXPECT_EQ(associatorNames(kFirst), returned(m_toSecond));
}

TEST_F(AssociationOperations, AskOnlyForAssociationsThatMayLeadThere) {
  m_agent.conformances.onEnumeration = [] { FAIL() << "was enumerated"; };
  EXPECT_EQ(associatorNames(kFirst, {given("Role", "Antecedent")}),
            returned(m_toPort + m_toSecond));
}

// -- across the namespaces --

TEST_F(AssociationOperations, LeadFromTheProfileToWhatConforms) {
  EXPECT_EQ(associatorNames(kProfile, {}, test::kInterop),
            returned(pathOf("test", deviceName("a", 1))));
  EXPECT_EQ(
      associatorNames(kProfile, {given("ResultClass", className("Test_Device"))}, test::kInterop),
      returned(pathOf("test", deviceName("a", 1))));
  EXPECT_EQ(referenceNames(kProfile, {}, test::kInterop),
            returned(pathOf("interop", conformanceName())));
}

TEST_F(AssociationOperations, NameTheHomesInTheReferences) {
  const std::string answer =
      ask("EnumerateInstances", {given("ClassName", className("CIM_ElementConformsToProfile"))});
  EXPECT_THAT(answer,
              AllOf(HasSubstr("<PROPERTY.REFERENCE NAME=\"ConformantStandard\" REFERENCECLASS=\""
                              "CIM_RegisteredProfile\"><VALUE.REFERENCE><LOCALINSTANCEPATH>" +
                              localPath("interop", withoutTypes(profileName()))),
                    HasSubstr("<PROPERTY.REFERENCE NAME=\"ManagedElement\" REFERENCECLASS=\""
                              "CIM_ManagedElement\"><VALUE.REFERENCE><LOCALINSTANCEPATH>" +
                              localPath("test", withoutTypes(deviceName("a", 1))))));
  EXPECT_EQ(ask("EnumerateInstances",
                {given("ClassName", className("CIM_ElementConformsToProfile"))}, test::kInterop),
            answer);
}

// -- classes --

TEST_F(AssociationOperations, NameTheClassesThatMayBeAssociated) {
  EXPECT_EQ(ask("ReferenceNames", {given("ObjectName", className("test_port"))}),
            returned(classPath("CIM_Dependency") + classPath("Test_Link") +
                     classPath("CIM_ElementConformsToProfile") +
                     classPath("Test_ElementConformsToProfile")));
  EXPECT_EQ(ask("ReferenceNames", {given("ObjectName", className("Test_Port")),
                                   given("ResultClass", className("Test_Link"))}),
            returned(classPath("Test_Link")));
  EXPECT_EQ(ask("AssociatorNames", {given("ObjectName", className("Test_Port"))}),
            returned(classPath("CIM_ManagedElement") + classPath("CIM_RegisteredProfile")));
  EXPECT_EQ(ask("AssociatorNames", {given("ObjectName", className("Test_Port")),
                                    given("ResultRole", "ConformantStandard")}),
            returned(classPath("CIM_RegisteredProfile")));
  EXPECT_EQ(ask("AssociatorNames", {given("ObjectName", className("Test_Link"))}), returned(""));
}

TEST_F(AssociationOperations, GiveTheClassesWithTheirPaths) {
  const std::string answer = ask("References", {given("ObjectName", className("Test_Port")),
                                                given("ResultClass", className("Test_Link"))});
  EXPECT_THAT(answer, AllOf(HasSubstr("<VALUE.OBJECTWITHPATH><CLASSPATH>"),
                            HasSubstr("<CLASS NAME=\"Test_Link\" SUPERCLASS=\"CIM_Dependency\">"),
                            Not(HasSubstr("QUALIFIER"))));
  EXPECT_THAT(ask("References", {given("ObjectName", className("Test_Port")),
                                 given("IncludeQualifiers", "TRUE")}),
              HasSubstr("QUALIFIER NAME=\"Association\""));
}

// -- refusals --

TEST_F(AssociationOperations, RefuseWrongRequests) {
  for (const char* operation : {"Associators", "AssociatorNames", "References", "ReferenceNames"}) {
    EXPECT_THAT(ask(operation), IsError(4, "parameter ObjectName: is required")) << operation;
    EXPECT_THAT(ask(operation, {given("ObjectName", "x")}), IsError(4, _)) << operation;
    EXPECT_THAT(
        ask(operation, {given("ObjectName", objectName(kFirst)), given("LocalOnly", "TRUE")}),
        IsError(4, _))
        << operation;
    EXPECT_THAT(ask(operation, {given("ObjectName", objectName(kFirst)),
                                given("ResultClass", className("Test_No"))}),
                IsError(4, "parameter ResultClass: there is no class &apos;Test_No&apos;"))
        << operation;
    EXPECT_THAT(ask(operation, {given("ObjectName", objectName(kFirst)), given("Role", texts({}))}),
                IsError(4, _))
        << operation;
    EXPECT_THAT(ask(operation, {given("ObjectName", className("Test_No"))}), IsError(5, _))
        << operation;
    EXPECT_THAT(ask(operation, {given("ObjectName", objectName("Test_No.A=1"))}), IsError(5, _))
        << operation;
    EXPECT_THAT(
        ask(operation, {given("ObjectName", objectName("Test_Device.InstanceID=\"z\",Slot=1"))}),
        IsError(6, _))
        << operation;
    EXPECT_THAT(ask(operation, {given("ObjectName", objectName(kFirst))}, "root/no"), IsError(3, _))
        << operation;
  }
  EXPECT_THAT(ask("AssociatorNames", {given("ObjectName", objectName(kFirst)),
                                      given("AssocClass", className("Test_No"))}),
              IsError(4, _));
}

// -- what is looked for ahead --

using LookingAssociationOperations = test::LookingFixture;

TEST_F(LookingAssociationOperations, HaveTheFilesOfTheirClassesLookedForBeforeTheRequest) {
  ask("References", {given("ObjectName", objectName(kFirst))});
  ask("AssociatorNames",
      {given("ObjectName", objectName(kPort)), given("AssocClass", className("Test_Link"))});
  EXPECT_THAT(m_looking.lookedFor,
              testing::ElementsAre(
                  testing::ElementsAre("Test_Device", "Test_ElementConformsToProfile", "Test_Link"),
                  testing::ElementsAre("Test_Link", "Test_Port")));
}

}  // namespace
