#include <gmock/gmock.h>

#include "cimxml/Response.h"

namespace {

using cimxml::KeyBinding;
using cimxml::ObjectName;
using cimxml::Response;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kName =
    "<INSTANCENAME CLASSNAME=\"Thing\"><KEYBINDING NAME=\"Id\"><KEYVALUE VALUETYPE=\"string\">"
    "a &lt; b</KEYVALUE></KEYBINDING></INSTANCENAME>";

std::string message(const std::string& answer) {
  return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">"
         "<MESSAGE ID=\"17\" PROTOCOLVERSION=\"1.0\"><SIMPLERSP>" +
         answer + "</SIMPLERSP></MESSAGE></CIM>";
}

Response parse(std::string body) {
  return cimxml::parseResponse(body);
}

Response parseReturned(const std::string& value) {
  return parse(message("<IMETHODRESPONSE NAME=\"Operation\"><IRETURNVALUE>" + value +
                       "</IRETURNVALUE></IMETHODRESPONSE>"));
}

std::string faultOf(const std::string& body) {
  try {
    static_cast<void>(parse(body));
  } catch (const cimxml::ResponseFault& fault) {
    return fault.what();
  }
  return "";
}

ObjectName thing() {
  ObjectName name;
  name.className = "Thing";
  name.isInstance = true;
  name.keys = {{"Id", KeyBinding::Kind::String, "a < b", {}}};
  return name;
}

TEST(Response, TellsWhatItAnswers) {
  const Response response = parseReturned("");
  EXPECT_EQ(response.messageId, "17");
  EXPECT_FALSE(response.isExtrinsic);
  EXPECT_EQ(response.name, "Operation");
  EXPECT_FALSE(response.error);
  EXPECT_THAT(response.instances, IsEmpty());
}

TEST(Response, MayBeAnError) {
  const Response response =
      parse(message("<IMETHODRESPONSE NAME=\"GetInstance\"><ERROR CODE=\"6\" DESCRIPTION=\"no "
                    "&quot;a&quot;\"/></IMETHODRESPONSE>"));
  ASSERT_TRUE(response.error);
  EXPECT_EQ(response.error->code, 6U);
  EXPECT_EQ(response.error->description, "no \"a\"");
  EXPECT_THAT(faultOf(message("<METHODRESPONSE NAME=\"M\"><ERROR CODE=\"x\"/></METHODRESPONSE>")),
              HasSubstr("code"));
}

TEST(Response, HoldsInstancesWithTheirNames) {
  const Response response = parseReturned(
      std::string("<VALUE.NAMEDINSTANCE>") + kName +
      "<INSTANCE CLASSNAME=\"Thing\"><PROPERTY NAME=\"Id\" TYPE=\"string\"><VALUE>a &lt; b</VALUE>"
      "</PROPERTY><PROPERTY NAME=\"None\" TYPE=\"uint16\"/>"
      "<PROPERTY.ARRAY NAME=\"Some\" TYPE=\"string\"><VALUE.ARRAY><VALUE>x</VALUE><VALUE/>"
      "<VALUE.NULL/></VALUE.ARRAY></PROPERTY.ARRAY>"
      "<PROPERTY.REFERENCE NAME=\"Other\"><VALUE.REFERENCE>" +
      kName + "</VALUE.REFERENCE></PROPERTY.REFERENCE></INSTANCE></VALUE.NAMEDINSTANCE>");
  ASSERT_THAT(response.instances, SizeIs(1));
  const cimxml::InstanceValue& instance = response.instances[0];
  EXPECT_EQ(instance.name, thing());
  ASSERT_THAT(instance.properties, SizeIs(4));
  EXPECT_EQ(instance.properties[0].name, "Id");
  EXPECT_EQ(instance.properties[0].type, "string");
  EXPECT_EQ(std::get<std::string>(instance.properties[0].value), "a < b");
  EXPECT_TRUE(std::holds_alternative<std::monostate>(instance.properties[1].value));
  EXPECT_TRUE(instance.properties[2].isArray);
  EXPECT_THAT(std::get<cimxml::StringArray>(instance.properties[2].value),
              ElementsAre("x", "", std::nullopt));
  EXPECT_EQ(instance.properties[3].type, "reference");
  EXPECT_EQ(std::get<ObjectName>(instance.properties[3].value), thing());
}

TEST(Response, HoldsAnInstanceWithoutName) {
  const Response response = parseReturned("<INSTANCE CLASSNAME=\"Thing\"/>");
  ASSERT_THAT(response.instances, SizeIs(1));
  EXPECT_EQ(response.instances[0].name.className, "Thing");
  EXPECT_FALSE(response.instances[0].name.isInstance);
}

TEST(Response, HoldsInstancesWithPaths) {
  const Response response = parseReturned(
      std::string("<VALUE.OBJECTWITHPATH><INSTANCEPATH><NAMESPACEPATH><HOST>lab:5988</HOST>"
                  "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"interop\"/>"
                  "</LOCALNAMESPACEPATH></NAMESPACEPATH>") +
      kName + "</INSTANCEPATH><INSTANCE CLASSNAME=\"Thing\"/></VALUE.OBJECTWITHPATH>");
  ASSERT_THAT(response.instances, SizeIs(1));
  EXPECT_EQ(response.instances[0].name.host, "lab:5988");
  EXPECT_EQ(response.instances[0].name.nameSpace, "root/interop");
  EXPECT_EQ(response.instances[0].name.keys, thing().keys);
}

TEST(Response, HoldsNamesOfClassesAndInstances) {
  const Response response =
      parseReturned(std::string("<CLASSNAME NAME=\"CIM_Job\"/>") + kName + "<OBJECTPATH>" +
                    "<LOCALINSTANCEPATH><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/>"
                    "</LOCALNAMESPACEPATH>" +
                    kName + "</LOCALINSTANCEPATH></OBJECTPATH>");
  ASSERT_THAT(response.names, SizeIs(3));
  EXPECT_EQ(response.names[0].className, "CIM_Job");
  EXPECT_FALSE(response.names[0].isInstance);
  EXPECT_EQ(response.names[1], thing());
  EXPECT_EQ(response.names[2].nameSpace, "root");
}

TEST(Response, HoldsClassesWithTheTypesOfTheirProperties) {
  const Response response = parseReturned(
      "<CLASS NAME=\"Link\" SUPERCLASS=\"CIM_Dependency\"><QUALIFIER NAME=\"Association\" "
      "TYPE=\"boolean\"><VALUE>TRUE</VALUE></QUALIFIER>"
      "<PROPERTY.REFERENCE NAME=\"Antecedent\" REFERENCECLASS=\"CIM_Thing\"/>"
      "<PROPERTY NAME=\"Id\" TYPE=\"uint32\"/><PROPERTY.ARRAY NAME=\"All\" TYPE=\"string\"/>"
      "<METHOD NAME=\"M\" TYPE=\"uint32\"/></CLASS><CLASS NAME=\"Top\"/>");
  ASSERT_THAT(response.classes, SizeIs(2));
  EXPECT_EQ(response.classes[0].name, "Link");
  EXPECT_EQ(response.classes[0].superclass, "CIM_Dependency");
  ASSERT_THAT(response.classes[0].properties, SizeIs(3));
  EXPECT_EQ(response.classes[0].properties[0].type, "reference");
  EXPECT_EQ(response.classes[0].properties[1].type, "uint32");
  EXPECT_TRUE(response.classes[0].properties[2].isArray);
  EXPECT_EQ(response.classes[1].superclass, "");
}

TEST(Response, HoldsWhatQualifiersSayOfClassesAndTheirElements) {
  const Response response = parseReturned(
      "<CLASS NAME=\"Fan\"><QUALIFIER NAME=\"Description\" TYPE=\"string\">"
      "<VALUE>a &lt; b</VALUE></QUALIFIER><QUALIFIER NAME=\"Null\" TYPE=\"string\"/>"
      "<PROPERTY NAME=\"State\" TYPE=\"uint16\"><QUALIFIER NAME=\"Values\" TYPE=\"string\">"
      "<VALUE.ARRAY><VALUE>On</VALUE><VALUE.NULL/></VALUE.ARRAY></QUALIFIER></PROPERTY>"
      "<METHOD NAME=\"Try\" TYPE=\"uint32\"><QUALIFIER NAME=\"Static\" TYPE=\"boolean\">"
      "<VALUE>TRUE</VALUE></QUALIFIER><PARAMETER.REFERENCE NAME=\"Peer\" REFERENCECLASS=\"Fan\">"
      "<QUALIFIER NAME=\"Out\" TYPE=\"boolean\"><VALUE>TRUE</VALUE></QUALIFIER>"
      "</PARAMETER.REFERENCE><PARAMETER.ARRAY NAME=\"Names\" TYPE=\"string\"/></METHOD></CLASS>");
  const cimxml::ClassValue& fan = response.classes.at(0);
  ASSERT_THAT(fan.qualifiers, SizeIs(2));
  EXPECT_EQ(fan.qualifiers[0].name, "Description");
  EXPECT_THAT(fan.qualifiers[0].values, testing::ElementsAre("a < b"));
  EXPECT_THAT(fan.qualifiers[1].values, testing::IsEmpty());
  EXPECT_THAT(fan.properties.at(0).qualifiers.at(0).values,
              testing::ElementsAre("On", std::nullopt));
  const cimxml::ClassValue::Method& method = fan.methods.at(0);
  EXPECT_EQ(method.qualifiers.at(0).name, "Static");
  ASSERT_THAT(method.parameters, SizeIs(2));
  EXPECT_EQ(method.parameters[0].referenceClass, "Fan");
  EXPECT_EQ(method.parameters[0].qualifiers.at(0).name, "Out");
  EXPECT_TRUE(method.parameters[1].isArray);
}

TEST(Response, OfAMethodHoldsReturnValueAndOutputs) {
  const Response response = parse(message(
      std::string(
          "<METHODRESPONSE NAME=\"InstallFromURI\"><RETURNVALUE PARAMTYPE=\"uint32\"><VALUE>"
          "4096</VALUE></RETURNVALUE><PARAMVALUE NAME=\"Job\" PARAMTYPE=\"reference\">"
          "<VALUE.REFERENCE>") +
      kName +
      "</VALUE.REFERENCE></PARAMVALUE><PARAMVALUE NAME=\"None\" PARAMTYPE=\"uint16\"/>"
      "</METHODRESPONSE>"));
  EXPECT_TRUE(response.isExtrinsic);
  EXPECT_EQ(response.name, "InstallFromURI");
  EXPECT_EQ(response.returnValue, "4096");
  ASSERT_THAT(response.outputs, SizeIs(2));
  EXPECT_EQ(response.outputs[0].name, "Job");
  EXPECT_EQ(std::get<ObjectName>(response.outputs[0].value), thing());
  EXPECT_TRUE(std::holds_alternative<std::monostate>(response.outputs[1].value));
}

TEST(Response, HoldsArraysOfReferences) {
  const std::string two = std::string("<VALUE.REFARRAY><VALUE.REFERENCE>") + kName +
                          "</VALUE.REFERENCE><VALUE.REFERENCE><CLASSNAME NAME=\"CIM_Job\"/>"
                          "</VALUE.REFERENCE></VALUE.REFARRAY>";
  ObjectName job;
  job.className = "CIM_Job";
  const Response method = parse(
      message("<METHODRESPONSE NAME=\"M\"><PARAMVALUE NAME=\"All\" PARAMTYPE=\"reference\">" + two +
              "</PARAMVALUE><PARAMVALUE NAME=\"None\" PARAMTYPE=\"reference\">"
              "<VALUE.REFARRAY/></PARAMVALUE></METHODRESPONSE>"));
  ASSERT_THAT(method.outputs, SizeIs(2));
  EXPECT_THAT(std::get<std::vector<ObjectName>>(method.outputs[0].value),
              ElementsAre(thing(), job));
  EXPECT_THAT(std::get<std::vector<ObjectName>>(method.outputs[1].value), IsEmpty());
  const Response instance = parseReturned(
      "<INSTANCE CLASSNAME=\"Link\"><PROPERTY.REFARRAY NAME=\"Not one of CIM\"/>"
      "<PROPERTY.REFERENCE NAME=\"All\">" +
      two + "</PROPERTY.REFERENCE></INSTANCE>");
  ASSERT_THAT(instance.instances, SizeIs(1));
  ASSERT_THAT(instance.instances[0].properties, SizeIs(1));
  EXPECT_THAT(std::get<std::vector<ObjectName>>(instance.instances[0].properties[0].value),
              ElementsAre(thing(), job));
}

TEST(Response, KeepsTextThatIsBlank) {
  const Response response = parseReturned(
      "<INSTANCE CLASSNAME=\"Thing\"><PROPERTY NAME=\"A\" TYPE=\"string\"><VALUE>  </VALUE>"
      "</PROPERTY><PROPERTY NAME=\"B\" TYPE=\"string\"><VALUE>a<![CDATA[<b>]]> </VALUE></PROPERTY>"
      "</INSTANCE>");
  ASSERT_THAT(response.instances, SizeIs(1));
  EXPECT_EQ(std::get<std::string>(response.instances[0].properties[0].value), "  ");
  EXPECT_EQ(std::get<std::string>(response.instances[0].properties[1].value), "a<b> ");
}

TEST(Response, IsRefusedWhereItIsNone) {
  for (const char* body :
       {"", "plain text", "<html><body>hello</body></html>", "<CIM/>",
        "<CIM><MESSAGE ID=\"1\"/></CIM>", "<CIM><MESSAGE ID=\"1\"><SIMPLERSP/></MESSAGE></CIM>",
        "<CIM><MESSAGE ID=\"1\"><SIMPLERSP>", "<!DOCTYPE CIM [<!ENTITY a \"b\">]><CIM/>",
        "\xff\xfe\xfd"}) {
    EXPECT_NE(faultOf(body), "") << body;
  }
}

TEST(Response, IsRefusedWhereANameIsNone) {
  for (const char* answer :
       {"<IRETURNVALUE><OBJECTPATH/></IRETURNVALUE>",
        "<IRETURNVALUE><VALUE.NAMEDINSTANCE/></IRETURNVALUE>",
        "<IRETURNVALUE><INSTANCEPATH><HOST/></INSTANCEPATH></IRETURNVALUE>",
        "<IRETURNVALUE><INSTANCENAME CLASSNAME=\"A\"><KEYBINDING NAME=\"B\"/></INSTANCENAME>"
        "</IRETURNVALUE>",
        "<PARAMVALUE NAME=\"Job\"><VALUE.REFERENCE/></PARAMVALUE>"}) {
    EXPECT_NE(faultOf(message(std::string("<IMETHODRESPONSE NAME=\"A\">") + answer +
                              "</IMETHODRESPONSE>")),
              "")
        << answer;
  }
}

TEST(Response, EndsWhereNamesHoldNamesForLong) {
  std::string name = kName;
  for (int i = 0; i < 100; ++i) {
    name = "<INSTANCENAME CLASSNAME=\"A\"><VALUE.REFERENCE>" + name +
           "</VALUE.REFERENCE></INSTANCENAME>";
  }
  EXPECT_NE(faultOf(message("<IMETHODRESPONSE NAME=\"A\"><IRETURNVALUE>" + name +
                            "</IRETURNVALUE></IMETHODRESPONSE>")),
            "");
}

}  // namespace
