#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "tests/wbem/LookingFixture.h"

namespace {

using test::className;
using test::deviceName;
using test::given;
using test::IsError;
using test::objectName;
using test::returned;
using test::texts;
using testing::_;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kFirst = "Test_Device.InstanceID=\"a\",Slot=1";
constexpr const char* kPort = "Test_Port.InstanceID=\"p\",Slot=1";
constexpr const char* kName =
    "<PROPERTY NAME=\"Name\" TYPE=\"string\"><VALUE>first &amp; best</VALUE></PROPERTY>";
constexpr const char* kNullName = "<PROPERTY NAME=\"Name\" TYPE=\"string\"></PROPERTY>";

std::string named(const std::string& name, const std::string& className,
                  const std::string& properties) {
  return "<VALUE.NAMEDINSTANCE>" + name + "<INSTANCE CLASSNAME=\"" + className + "\">" +
         properties + "</INSTANCE></VALUE.NAMEDINSTANCE>";
}

class InstanceOperations : public test::ServerFixture {
 protected:
  std::string getFirst(std::vector<cimxml::Parameter> further) {
    further.push_back(given("InstanceName", objectName(kFirst)));
    return ask("GetInstance", std::move(further));
  }

  std::string modify(std::vector<cimxml::PropertyValue> properties,
                     std::vector<cimxml::Parameter> further = {},
                     const std::string& path = kFirst) {
    further.push_back(
        given("ModifiedInstance", cimxml::InstanceValue{objectName(path), std::move(properties)}));
    return ask("ModifyInstance", std::move(further));
  }

  std::string nameOfFirst() { return getFirst({given("PropertyList", texts({"Name"}))}); }
};

// -- EnumerateInstances, EnumerateInstanceNames --

TEST_F(InstanceOperations, EnumerateAClassWithItsSubclasses) {
  EXPECT_EQ(ask("EnumerateInstances", {given("ClassName", className("TEST_device")),
                                       given("PropertyList", texts({"NAME", "Speed", "Other"}))}),
            returned(named(deviceName("a", 1), "Test_Device", kName) +
                     named(deviceName("b", 2), "Test_Device", kNullName) +
                     named(deviceName("p", 1, "Test_Port"), "Test_Port",
                           std::string(kNullName) +
                               "<PROPERTY NAME=\"Speed\" TYPE=\"uint64\"><VALUE>25000000000</VALUE>"
                               "</PROPERTY>")));
}

TEST_F(InstanceOperations, EnumerateInFull) {
  EXPECT_EQ(
      ask("EnumerateInstances", {given("ClassName", className("Test_Port"))}),
      returned(named(
          deviceName("p", 1, "Test_Port"), "Test_Port",
          "<PROPERTY NAME=\"InstanceID\" TYPE=\"string\"><VALUE>p</VALUE></PROPERTY>"
          "<PROPERTY NAME=\"Caption\" TYPE=\"string\"></PROPERTY><PROPERTY NAME=\"Description\" "
          "TYPE=\"string\"></PROPERTY><PROPERTY NAME=\"ElementName\" "
          "TYPE=\"string\"></PROPERTY><PROPERTY "
          "NAME=\"Generation\" TYPE=\"uint64\"></PROPERTY><PROPERTY NAME=\"Slot\" "
          "TYPE=\"uint16\"><VALUE>1"
          "</VALUE></PROPERTY><PROPERTY NAME=\"Name\" TYPE=\"string\"></PROPERTY><PROPERTY "
          "NAME=\"Speed\" "
          "TYPE=\"uint64\"><VALUE>25000000000</VALUE></PROPERTY>")));
}

TEST_F(InstanceOperations, EnumerateTheNamedClassesPropertiesWhenThatIsNotDeep) {
  const std::string answer =
      ask("EnumerateInstances",
          {given("ClassName", className("Test_Device")), given("DeepInheritance", "FALSE")});
  EXPECT_THAT(answer, AllOf(HasSubstr("CLASSNAME=\"Test_Port\""), HasSubstr("NAME=\"Slot\""),
                            Not(HasSubstr("NAME=\"Speed\""))));
}

TEST_F(InstanceOperations, LeaveOutWhatIsInherited) {
  EXPECT_EQ(ask("EnumerateInstances",
                {given("ClassName", className("Test_Port")), given("LocalOnly", "TRUE"),
                 given("IncludeClassOrigin", "TRUE"), given("IncludeQualifiers", "TRUE")}),
            returned(named(deviceName("p", 1, "Test_Port"), "Test_Port",
                           "<PROPERTY NAME=\"Speed\" TYPE=\"uint64\" CLASSORIGIN=\"Test_Port\">"
                           "<VALUE>25000000000</VALUE></PROPERTY>")));
}

TEST_F(InstanceOperations, ChooseNothingByAnEmptyList) {
  EXPECT_EQ(ask("EnumerateInstances",
                {given("ClassName", className("Test_Port")), given("PropertyList", texts({}))}),
            returned(named(deviceName("p", 1, "Test_Port"), "Test_Port", "")));
}

TEST_F(InstanceOperations, EnumerateNames) {
  EXPECT_EQ(ask("EnumerateInstanceNames", {given("ClassName", className("Test_Device"))}),
            returned(deviceName("a", 1) + deviceName("b", 2) + deviceName("p", 1, "Test_Port")));
  EXPECT_EQ(ask("EnumerateInstanceNames", {given("ClassName", className("CIM_Dependency"))}),
            returned([] {
              const auto link = [](const std::string& dependent) {
                const auto reference = [](const std::string& name, const std::string& target) {
                  return "<KEYBINDING NAME=\"" + name + "\"><VALUE.REFERENCE><LOCALINSTANCEPATH>" +
                         test::localPath("test", target) +
                         "</LOCALINSTANCEPATH></VALUE.REFERENCE></KEYBINDING>";
                };
                return "<INSTANCENAME CLASSNAME=\"Test_Link\">" +
                       reference("Antecedent", deviceName("a", 1)) +
                       reference("Dependent", dependent) + "</INSTANCENAME>";
              };
              return link(deviceName("p", 1, "Test_Port")) + link(deviceName("b", 2));
            }()));
}

TEST_F(InstanceOperations, EnumerateAClassWithoutInstances) {
  m_agent.jobs.clear();
  EXPECT_EQ(ask("EnumerateInstances", {given("ClassName", className("CIM_ConcreteJob"))}),
            returned(""));
}

TEST_F(InstanceOperations, RefuseWrongEnumerations) {
  for (const char* operation : {"EnumerateInstances", "EnumerateInstanceNames"}) {
    EXPECT_THAT(ask(operation), IsError(4, "parameter ClassName: is required"));
    EXPECT_THAT(ask(operation, {given("ClassName", objectName(kFirst))}), IsError(4, _));
    EXPECT_THAT(ask(operation, {given("ClassName", className("Test_Device")), given("X", "")}),
                IsError(4, _));
    EXPECT_THAT(ask(operation, {given("ClassName", className("Test_No"))}),
                IsError(5, "there is no class &apos;Test_No&apos; in namespace root/test"));
    EXPECT_THAT(ask(operation, {given("ClassName", className("Test_Device"))}, "root/cimv2"),
                IsError(3, _));
    EXPECT_THAT(ask(operation, {given("ClassName", className("Test_Device"))}, test::kInterop),
                IsError(5, _));
  }
  EXPECT_THAT(ask("EnumerateInstances",
                  {given("ClassName", className("Test_Device")), given("DeepInheritance", "7")}),
              IsError(4, _));
}

// -- GetInstance --

TEST_F(InstanceOperations, GetOne) {
  EXPECT_EQ(nameOfFirst(),
            returned("<INSTANCE CLASSNAME=\"Test_Device\">" + std::string(kName) + "</INSTANCE>"));
  EXPECT_THAT(getFirst({}), AllOf(HasSubstr("NAME=\"Caption\""), HasSubstr(kName)));
  EXPECT_THAT(getFirst({given("LocalOnly", "TRUE")}),
              AllOf(Not(HasSubstr("NAME=\"Caption\"")), HasSubstr(kName)));
}

TEST_F(InstanceOperations, GetAnAssociation) {
  const std::string path = m_agent.links.getInstances().first()->getPath();
  const std::string answer = ask("GetInstance", {given("InstanceName", objectName(path))});
  EXPECT_THAT(answer, HasSubstr("<PROPERTY.REFERENCE NAME=\"Dependent\" REFERENCECLASS=\""
                                "CIM_ManagedElement\"><VALUE.REFERENCE><LOCALINSTANCEPATH>" +
                                test::localPath("test", deviceName("p", 1, "Test_Port")) +
                                "</LOCALINSTANCEPATH></VALUE.REFERENCE></PROPERTY.REFERENCE>"));
  EXPECT_THAT(answer, HasSubstr("<VALUE>owns</VALUE>"));
}

TEST_F(InstanceOperations, TellOfAnInstanceThatThereIsNot) {
  EXPECT_THAT(ask("GetInstance",
                  {given("InstanceName", objectName("Test_Device.InstanceID=\"z\",Slot=1"))}),
              IsError(6, "there is no instance Test_Device.InstanceID=&quot;z&quot;,Slot=1"));
  EXPECT_THAT(ask("GetInstance", {given("InstanceName", objectName("Test_Device.Slot=1"))}),
              IsError(6, _));
  EXPECT_THAT(ask("GetInstance", {given("InstanceName", objectName("Test_No.Slot=1"))}),
              IsError(5, _));
}

TEST_F(InstanceOperations, KnowNoInstanceByAReferenceToAnotherNamespace) {
  cimxml::ObjectName link = objectName(
      "Test_Link.Antecedent=\"Test_Device.InstanceID=\\\"a\\\",Slot=1\","
      "Dependent=\"Test_Device.InstanceID=\\\"b\\\",Slot=2\"");
  link.keys.back().reference.front().nameSpace = "root/test";
  EXPECT_THAT(ask("GetInstance", {given("InstanceName", link)}), HasSubstr("beside"));
  link.keys.back().reference.front().nameSpace = "root/other";
  EXPECT_THAT(ask("GetInstance", {given("InstanceName", link)}), IsError(6, _));
  EXPECT_THAT(ask("ModifyInstance", {given("ModifiedInstance", cimxml::InstanceValue{link, {}})}),
              IsError(6, _));
}

TEST_F(InstanceOperations, RefuseAWrongGetInstance) {
  EXPECT_THAT(ask("GetInstance"), IsError(4, "parameter InstanceName: is required"));
  EXPECT_THAT(ask("GetInstance", {given("InstanceName", className("Test_Device"))}), IsError(4, _));
  EXPECT_THAT(getFirst({given("DeepInheritance", "TRUE")}), IsError(4, _));
  EXPECT_THAT(getFirst({given("PropertyList", "Name")}), IsError(4, _));
  EXPECT_THAT(
      ask("GetInstance", {given("InstanceName", objectName(kFirst))}, "root"),
      IsError(3, "there is no namespace &apos;root&apos;; there are root/test and root/interop"));
}

// -- ModifyInstance --

TEST_F(InstanceOperations, ModifyAProperty) {
  EXPECT_EQ(modify({{"NAME", "string", false, "new"}}), "");
  EXPECT_THAT(nameOfFirst(), HasSubstr("<VALUE>new</VALUE>"));
}

TEST_F(InstanceOperations, ModifyWhatIsListedAlone) {
  EXPECT_EQ(modify({{"Name", "string", false, "new"}, {"Slot", "uint16", false, "9"}},
                   {given("PropertyList", texts({"name"})), given("IncludeQualifiers", "FALSE")}),
            "");
  EXPECT_THAT(nameOfFirst(), HasSubstr("<VALUE>new</VALUE>"));
}

TEST_F(InstanceOperations, ModifyNothingWhenOneValueIsRefused) {
  EXPECT_THAT(modify({{"Name", "string", false, "new"}, {"Slot", "uint16", false, "9"}}),
              IsError(2, HasSubstr("Modyfying of Slot property is not allowed")));
  EXPECT_THAT(nameOfFirst(), HasSubstr(kName));
}

TEST_F(InstanceOperations, RefuseValuesThatThePropertyForbids) {
  EXPECT_THAT(modify({{"Name", "string", false, std::string(21, 'x')}}),
              IsError(4, HasSubstr("Length of Name property cannot be biger then 20")));
  EXPECT_THAT(modify({{"Name", "string", false, cimxml::Value()}}),
              IsError(4, HasSubstr("Property Name cannot be a NULL")));
  EXPECT_THAT(modify({}, {given("PropertyList", texts({"Name"}))}),
              IsError(4, HasSubstr("Property Name cannot be a NULL")));
}

TEST_F(InstanceOperations, RefuseValuesOfAnotherType) {
  EXPECT_THAT(modify({{"Slot", "uint16", false, "many"}}), IsError(13, HasSubstr("Slot")));
  EXPECT_THAT(modify({{"Slot", "string", false, "1"}}), IsError(13, HasSubstr("is a uint16")));
  EXPECT_THAT(modify({{"Slot", "uint16", true, texts({"1"})}}), IsError(13, HasSubstr("Slot")));
}

TEST_F(InstanceOperations, RefuseUnknownProperties) {
  EXPECT_THAT(modify({{"Speed", "uint64", false, "1"}}),
              IsError(12, "class Test_Device has no property &apos;Speed&apos;"));
  EXPECT_THAT(modify({}, {given("PropertyList", texts({"Speed"}))}), IsError(12, _));
}

TEST_F(InstanceOperations, RefuseAWrongModifyInstance) {
  EXPECT_THAT(ask("ModifyInstance"), IsError(4, "parameter ModifiedInstance: is required"));
  EXPECT_THAT(ask("ModifyInstance", {given("ModifiedInstance", "x")}), IsError(4, _));
  EXPECT_THAT(modify({}, {given("InstanceName", objectName(kPort))}), IsError(4, _));
  EXPECT_THAT(modify({{"Name", "string", false, "a"}, {"name", "string", false, "b"}}),
              IsError(4, "property Name is given twice"));
  EXPECT_THAT(modify({{"Slot", "uint16", false, "1"}, {"SLOT", "uint16", false, "1"}},
                     {given("PropertyList", texts({"Name"}))}),
              IsError(4, "property Slot is given twice"));
  EXPECT_THAT(modify({}, {}, "Test_Device.InstanceID=\"z\",Slot=1"), IsError(6, _));
  EXPECT_THAT(modify({}, {}, "Test_No.InstanceID=\"z\""), IsError(5, _));
}

// -- what is looked for ahead --

using LookingInstanceOperations = test::LookingFixture;

TEST_F(LookingInstanceOperations, HaveTheFilesOfTheirClassesLookedForBeforeTheRequest) {
  ask("EnumerateInstances", {given("ClassName", className("Test_Device"))});
  ask("GetInstance", {given("InstanceName", objectName(kPort))});
  ask("ModifyInstance", {given("ModifiedInstance", cimxml::InstanceValue{objectName(kFirst), {}})});
  EXPECT_THAT(
      m_looking.lookedFor,
      testing::ElementsAre(testing::ElementsAre("Test_Device", "Test_Port"),
                           testing::ElementsAre("Test_Port"), testing::ElementsAre("Test_Device")));
}

}  // namespace
