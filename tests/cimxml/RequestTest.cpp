#include <gmock/gmock.h>

#include "cimxml/Buffer.h"
#include "cimxml/InstanceFormat.h"
#include "cimxml/NameWriter.h"
#include "cimxml/Request.h"
#include "tests/cimxml/TestInstances.h"

namespace {

using cimxml::InstanceValue;
using cimxml::KeyBinding;
using cimxml::ObjectName;
using cimxml::Request;
using cimxml::RequestFault;
using cimxml::StringArray;
using cimxml::Value;

const std::string kNamespace =
    "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"x\"/></LOCALNAMESPACEPATH>";
const std::string kName =
    "<INSTANCENAME CLASSNAME=\"C\"><KEYBINDING NAME=\"K\"><KEYVALUE VALUETYPE=\"string\">a&amp;b"
    "</KEYVALUE></KEYBINDING></INSTANCENAME>";
const std::string kOperation = "<IMETHODCALL NAME=\"GetClass\">" + kNamespace + "</IMETHODCALL>";

std::string message(const std::string& content) {
  return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
         "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n <MESSAGE ID=\"7\" "
         "PROTOCOLVERSION=\"1.0\">" +
         content + "</MESSAGE>\n</CIM>\n";
}

std::string simple(const std::string& content) {
  return message("<SIMPLEREQ>" + content + "</SIMPLEREQ>");
}

// An operation with one parameter, P.
std::string withParameter(const std::string& value) {
  return simple("<IMETHODCALL NAME=\"O\">" + kNamespace + "<IPARAMVALUE NAME=\"P\">" + value +
                "</IPARAMVALUE></IMETHODCALL>");
}

// A method call on the class C with that behind its path.
std::string withArguments(const std::string& arguments) {
  return simple("<METHODCALL NAME=\"M\"><LOCALCLASSPATH>" + kNamespace +
                "<CLASSNAME NAME=\"C\"/></LOCALCLASSPATH>" + arguments + "</METHODCALL>");
}

Request read(std::string text) {
  return cimxml::parseRequest(text);
}

template <class Kind>
Kind valueOf(const std::string& value) {
  return std::get<Kind>(read(withParameter(value)).parameters.at(0).value);
}

std::string faultOf(std::string text) {
  try {
    static_cast<void>(cimxml::parseRequest(text));
  } catch (const RequestFault& fault) {
    EXPECT_STRNE(fault.what(), "");
    return (fault.kind() == RequestFault::Kind::Malformed ? "malformed: " : "unsupported: ") +
           fault.cimError();
  }
  return "none";
}

ObjectName name() {
  return {"", "", "C", true, {{"K", KeyBinding::Kind::String, "a&b", {}}}};
}

TEST(Request, ReadsAnOperation) {
  const Request request =
      read(simple("<IMETHODCALL NAME=\"EnumerateInstances\">" + kNamespace +
                  "<IPARAMVALUE NAME=\"ClassName\"><CLASSNAME NAME=\"CIM_Job\"/></IPARAMVALUE>"
                  "<IPARAMVALUE NAME=\"LocalOnly\"><VALUE>FALSE</VALUE></IPARAMVALUE>"
                  "<IPARAMVALUE NAME=\"PropertyList\"/></IMETHODCALL>"));

  EXPECT_EQ(request.messageId, "7");
  EXPECT_FALSE(request.isExtrinsic);
  EXPECT_EQ(request.name, "EnumerateInstances");
  EXPECT_EQ(request.nameSpace, "root/x");
  ASSERT_EQ(request.parameters.size(), 3U);
  EXPECT_EQ(std::get<ObjectName>(request.find("classname")->value),
            (ObjectName{"", "", "CIM_Job", false, {}}));
  EXPECT_EQ(std::get<std::string>(request.find("LOCALONLY")->value), "FALSE");
  EXPECT_TRUE(std::holds_alternative<std::monostate>(request.find("PropertyList")->value));
  EXPECT_EQ(request.find("Other"), nullptr);
}

TEST(Request, ReadsAMethodOfAnInstance) {
  const Request request = read(
      simple("<METHODCALL NAME=\"InstallFromURI\"><LOCALINSTANCEPATH>" + kNamespace + kName +
             "</LOCALINSTANCEPATH>"
             "<PARAMVALUE NAME=\"URI\" PARAMTYPE=\"string\"><VALUE>file:/x</VALUE></PARAMVALUE>"
             "<PARAMVALUE NAME=\"Target\"><VALUE.REFERENCE>" +
             kName + "</VALUE.REFERENCE></PARAMVALUE></METHODCALL>"));

  EXPECT_TRUE(request.isExtrinsic);
  EXPECT_EQ(request.name, "InstallFromURI");
  EXPECT_EQ(request.nameSpace, "root/x");
  EXPECT_EQ(request.target, name());
  ASSERT_EQ(request.parameters.size(), 2U);
  EXPECT_EQ(request.parameters[0].type, "string");
  EXPECT_EQ(std::get<std::string>(request.parameters[0].value), "file:/x");
  EXPECT_EQ(request.parameters[1].type, "");
  EXPECT_EQ(std::get<ObjectName>(request.parameters[1].value), name());
}

TEST(Request, ReadsAMethodOfAClass) {
  const Request request = read(withArguments(""));
  EXPECT_EQ(request.target, (ObjectName{"", "", "C", false, {}}));
  EXPECT_EQ(request.nameSpace, "root/x");
}

TEST(Request, KeepsTextsAsTheyAre) {
  EXPECT_EQ(valueOf<std::string>("<VALUE/>"), "");
  EXPECT_EQ(valueOf<std::string>("<VALUE>  </VALUE>"), "  ");
  EXPECT_EQ(valueOf<std::string>("<VALUE> a\n&#13;b\t</VALUE>"), " a\n\rb\t");
  EXPECT_EQ(valueOf<std::string>("<VALUE> <!-- x --> </VALUE>"), "  ");
  EXPECT_EQ(valueOf<std::string>("<VALUE> <![CDATA[ <&amp; ]]> x</VALUE>"), "  <&amp;  x");
  EXPECT_EQ(valueOf<std::string>("<VALUE>&lt;&#x20AC;&#65;&quot;&apos;&gt;</VALUE>"),
            "<\xE2\x82\xAC"
            "A\"'>");
  EXPECT_EQ(valueOf<std::string>("<VALUE>&amp;lt;</VALUE>"), "&lt;");
}

TEST(Request, ReadsArrays) {
  EXPECT_EQ(valueOf<StringArray>("<VALUE.ARRAY/>"), StringArray{});
  EXPECT_EQ(
      valueOf<StringArray>("<VALUE.ARRAY> <VALUE>a</VALUE><VALUE.NULL/><VALUE/></VALUE.ARRAY>"),
      (StringArray{"a", std::nullopt, ""}));
}

TEST(Request, ReadsReferencesOfAnyForm) {
  const std::string hosted = "<NAMESPACEPATH><HOST>h</HOST>" + kNamespace + "</NAMESPACEPATH>";
  ObjectName expected = name();
  EXPECT_EQ(valueOf<ObjectName>("<VALUE.REFERENCE>" + kName + "</VALUE.REFERENCE>"), expected);
  expected.nameSpace = "root/x";
  EXPECT_EQ(valueOf<ObjectName>("<VALUE.REFERENCE><LOCALINSTANCEPATH>" + kNamespace + kName +
                                "</LOCALINSTANCEPATH></VALUE.REFERENCE>"),
            expected);
  expected.host = "h";
  EXPECT_EQ(valueOf<ObjectName>("<VALUE.REFERENCE><INSTANCEPATH>" + hosted + kName +
                                "</INSTANCEPATH></VALUE.REFERENCE>"),
            expected);
  EXPECT_EQ(valueOf<ObjectName>("<VALUE.REFERENCE><CLASSPATH>" + hosted +
                                "<CLASSNAME NAME=\"C\"/></CLASSPATH></VALUE.REFERENCE>"),
            (ObjectName{"h", "root/x", "C", false, {}}));
}

TEST(Request, ReadsArraysOfReferences) {
  using Names = std::vector<ObjectName>;
  EXPECT_EQ(valueOf<Names>("<VALUE.REFARRAY/>"), Names{});
  EXPECT_EQ(valueOf<Names>("<VALUE.REFARRAY><VALUE.REFERENCE>" + kName +
                           "</VALUE.REFERENCE><VALUE.NULL/></VALUE.REFARRAY>"),
            (Names{name(), ObjectName{}}));
}

TEST(Request, ReadsNullInManyForms) {
  for (const char* value : {"", "<VALUE.NULL/>", "<CLASS NAME=\"C\"><PROPERTY/></CLASS>",
                            "<QUALIFIER.DECLARATION NAME=\"Q\" TYPE=\"string\"/>"}) {
    EXPECT_NO_THROW(static_cast<void>(valueOf<std::monostate>(value))) << value;
  }
}

TEST(Request, ReadsAnInstance) {
  const auto instance = valueOf<InstanceValue>(
      "<INSTANCE CLASSNAME=\"C\"><QUALIFIER NAME=\"Q\" TYPE=\"string\"><VALUE>q</VALUE></QUALIFIER>"
      "<PROPERTY NAME=\"A\" TYPE=\"uint16\"><QUALIFIER NAME=\"Q\" TYPE=\"boolean\"/>"
      "<VALUE>7</VALUE></PROPERTY>"
      "<PROPERTY NAME=\"B\" TYPE=\"string\"/>"
      "<PROPERTY.ARRAY NAME=\"D\" TYPE=\"string\"><VALUE.ARRAY><VALUE>d</VALUE></VALUE.ARRAY>"
      "</PROPERTY.ARRAY>"
      "<PROPERTY.REFERENCE NAME=\"E\"><VALUE.REFERENCE>" +
      kName + "</VALUE.REFERENCE></PROPERTY.REFERENCE></INSTANCE>");

  EXPECT_EQ(instance.name, (ObjectName{"", "", "C", false, {}}));
  ASSERT_EQ(instance.properties.size(), 4U);
  EXPECT_EQ(instance.properties[0].name, "A");
  EXPECT_EQ(instance.properties[0].type, "uint16");
  EXPECT_FALSE(instance.properties[0].isArray);
  EXPECT_EQ(std::get<std::string>(instance.properties[0].value), "7");
  EXPECT_TRUE(std::holds_alternative<std::monostate>(instance.properties[1].value));
  EXPECT_TRUE(instance.properties[2].isArray);
  EXPECT_EQ(std::get<StringArray>(instance.properties[2].value), StringArray{"d"});
  EXPECT_EQ(instance.properties[3].type, "reference");
  EXPECT_EQ(std::get<ObjectName>(instance.properties[3].value), name());
}

TEST(Request, ReadsAnInstanceWithItsName) {
  const auto instance = valueOf<InstanceValue>("<VALUE.NAMEDINSTANCE>" + kName +
                                               "<INSTANCE CLASSNAME=\"c\"/></VALUE.NAMEDINSTANCE>");
  EXPECT_EQ(instance.name, name());
  EXPECT_TRUE(instance.properties.empty());
}

TEST(Request, TakesAnyVersionOfTheSameKind) {
  EXPECT_EQ(faultOf("<CIM DTDVERSION=\"2.3.1\" CIMVERSION=\"2.42\"><MESSAGE PROTOCOLVERSION=\"1.4\""
                    " ID=\"\"><SIMPLEREQ>" +
                    kOperation + "</SIMPLEREQ></MESSAGE></CIM>"),
            "none");
}

TEST(Request, TakesWhatMayStandRoundTheMessage) {
  EXPECT_EQ(faultOf("\xEF\xBB\xBF<?xml version=\"1.0\"?><!DOCTYPE CIM SYSTEM \"cim.dtd\"><!-- a -->"
                    "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><!-- b --><MESSAGE ID=\"1\""
                    " PROTOCOLVERSION=\"1.0\"><?c d?><SIMPLEREQ><CORRELATOR NAME=\"e\"/>" +
                    kOperation + "</SIMPLEREQ></MESSAGE></CIM><!-- f -->\n"),
            "none");
}

struct Broken {
  std::string text;
  const char* fault;
};

constexpr const char* kNotWellFormed = "malformed: request-not-well-formed";
constexpr const char* kNotValid = "malformed: request-not-valid";

TEST(Request, IsRefusedAsDsp0200Says) {
  const std::string versions = "CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"";
  const std::vector<Broken> table{
      {"", kNotWellFormed},
      {"GET / HTTP/1.1", kNotWellFormed},
      {simple(kOperation) + "x", kNotWellFormed},
      {simple(kOperation) + simple(kOperation), kNotWellFormed},
      {withParameter("<VALUE>&lol;</VALUE>"), kNotWellFormed},
      {withParameter("<VALUE>\xFF</VALUE>"), kNotWellFormed},
      {withParameter("<VALUE A=\"\" A=\"\"/>"), kNotWellFormed},
      {"<?xml version=\"1.0\" encoding=\"utf-16\"?><CIM/>", kNotWellFormed},
      {"<!DOCTYPE CIM [<!ENTITY a \"b\">]>" + simple(kOperation).substr(39), kNotValid},
      {"<HTML/>", kNotValid},
      {"<CIM/>", kNotValid},
      {"<CIM DTDVERSION=\"2.0\"/>", kNotValid},
      {"<CIM CIMVERSION=\"2.0\"/>", kNotValid},
      {"<CIM CIMVERSION=\"1.0\" DTDVERSION=\"2.0\"/>", "unsupported: unsupported-cim-version"},
      {"<CIM CIMVERSION=\"2\" DTDVERSION=\"2.0\"/>", "unsupported: unsupported-cim-version"},
      {"<CIM CIMVERSION=\"2.\" DTDVERSION=\"2.0\"/>", "unsupported: unsupported-cim-version"},
      {"<CIM CIMVERSION=\"2.x\" DTDVERSION=\"2.0\"/>", "unsupported: unsupported-cim-version"},
      {"<CIM CIMVERSION=\"2.0\" DTDVERSION=\"3.0\"/>", "unsupported: unsupported-dtd-version"},
      {"<CIM " + versions + "/>", kNotValid},
      {"<CIM " + versions + "><DECLARATION/></CIM>", kNotValid},
      {"<CIM " + versions + ">x<MESSAGE/></CIM>", kNotValid},
      {"<CIM " + versions + "><MESSAGE PROTOCOLVERSION=\"1.0\"/></CIM>", kNotValid},
      {"<CIM " + versions + "><MESSAGE ID=\"1\"/></CIM>", kNotValid},
      {"<CIM " + versions + "><MESSAGE ID=\"1\" PROTOCOLVERSION=\"2.0\"/></CIM>",
       "unsupported: unsupported-protocol-version"},
      {message(""), kNotValid},
      {message("<MULTIREQ/>"), "unsupported: multiple-requests-unsupported"},
      {message("<MULTIEXPREQ/>"), "unsupported: multiple-requests-unsupported"},
      {message("<SIMPLEEXPREQ/>"), "unsupported: unsupported-operation"},
      {message("<SIMPLERSP/>"), kNotValid},
      {message("<MULTIRSP/>"), kNotValid},
      {message("<SIMPLEEXPRSP/>"), kNotValid},
      {message("<SIMPLEREQ/>"), kNotValid},
      {message("<SIMPLEREQ>" + kOperation + "</SIMPLEREQ><SIMPLEREQ/>"), kNotValid},
      {simple("<EXPMETHODCALL NAME=\"E\"/>"), kNotValid},
      {simple(kOperation + kOperation), kNotValid},
      {simple("<IMETHODCALL>" + kNamespace + "</IMETHODCALL>"), kNotValid},
      {simple("<IMETHODCALL NAME=\"O\"/>"), kNotValid},
      {simple("<IMETHODCALL NAME=\"O\"><LOCALNAMESPACEPATH/></IMETHODCALL>"), kNotValid},
      {simple("<IMETHODCALL NAME=\"O\">" + kNamespace + "<PARAMVALUE NAME=\"P\"/></IMETHODCALL>"),
       kNotValid},
      {simple("<IMETHODCALL NAME=\"O\">" + kNamespace + "<IPARAMVALUE/></IMETHODCALL>"), kNotValid},
      {simple("<METHODCALL NAME=\"M\">" + kNamespace + "</METHODCALL>"), kNotValid},
      {simple("<METHODCALL NAME=\"M\"><INSTANCEPATH/></METHODCALL>"), kNotValid},
      {withArguments("<EXPPARAMVALUE NAME=\"P\"/>"), kNotValid},
      {withArguments("<IPARAMVALUE NAME=\"P\"/>"), kNotValid},
      {withParameter("x"), kNotValid},
      {withParameter("<VALUE/><VALUE/>"), kNotValid},
      {withParameter("<VALUE><VALUE/></VALUE>"), kNotValid},
      {withParameter("<KEYVALUE/>"), kNotValid},
      {withParameter("<VALUE.NULL>x</VALUE.NULL>"), kNotValid},
      {withParameter("<VALUE.ARRAY><VALUE.ARRAY/></VALUE.ARRAY>"), kNotValid},
      {withParameter("<VALUE.ARRAY>x</VALUE.ARRAY>"), kNotValid},
      {withParameter("<VALUE.REFARRAY><VALUE/></VALUE.REFARRAY>"), kNotValid},
      {withParameter("<VALUE.REFERENCE/>"), kNotValid},
      {withParameter("<INSTANCE/>"), kNotValid},
      {withParameter("<INSTANCE CLASSNAME=\"C\"><METHOD/></INSTANCE>"), kNotValid},
      {withParameter("<INSTANCE CLASSNAME=\"C\"><PROPERTY/></INSTANCE>"), kNotValid},
      {withParameter("<INSTANCE CLASSNAME=\"C\"><PROPERTY NAME=\"P\"><VALUE.ARRAY/></PROPERTY>"
                     "</INSTANCE>"),
       kNotValid},
      {withParameter("<VALUE.NAMEDINSTANCE>" + kName + "</VALUE.NAMEDINSTANCE>"), kNotValid},
      {withParameter("<VALUE.NAMEDINSTANCE>" + kName +
                     "<INSTANCE CLASSNAME=\"D\"/></VALUE.NAMEDINSTANCE>"),
       kNotValid},
  };
  for (const Broken& broken : table) {
    EXPECT_EQ(faultOf(broken.text), broken.fault) << broken.text;
  }
}

TEST(Request, DoesNotGrowWithEntities) {
  std::string laughs = "<!DOCTYPE CIM [<!ENTITY a0 \"lol\">";
  for (int i = 1; i < 20; ++i) {
    laughs += "<!ENTITY a" + std::to_string(i) + " \"";
    for (int j = 0; j < 10; ++j) {
      laughs += "&a" + std::to_string(i - 1) + ";";
    }
    laughs += "\">";
  }
  EXPECT_EQ(faultOf(laughs + "]><CIM>&a19;</CIM>"), kNotValid);
}

std::string nestReferences(unsigned depth) {
  std::string start;
  std::string end;
  for (unsigned i = 0; i < depth; ++i) {
    start += "<VALUE.REFERENCE><INSTANCENAME CLASSNAME=\"C\">";
    end += "</INSTANCENAME></VALUE.REFERENCE>";
  }
  return withParameter(start + end);
}

TEST(Request, HoldsReferencesToACertainDepthOnly) {
  EXPECT_EQ(faultOf(nestReferences(29)), "none");
  EXPECT_EQ(faultOf(nestReferences(30)), kNotValid);
  EXPECT_EQ(faultOf(nestReferences(100'000)), kNotValid);
}

TEST(Request, IsReadOrRefusedWhereverItIsCutOff) {
  const std::string whole = withArguments(
      "<PARAMVALUE NAME=\"P\" PARAMTYPE=\"reference\"><VALUE.REFERENCE><INSTANCEPATH>"
      "<NAMESPACEPATH><HOST>h</HOST>" +
      kNamespace + "</NAMESPACEPATH>" + kName +
      "</INSTANCEPATH></VALUE.REFERENCE></PARAMVALUE><PARAMVALUE NAME=\"Q\"><VALUE.ARRAY>"
      "<VALUE><![CDATA[<x>]]>&#x20AC;\xE2\x82\xAC</VALUE><!-- y --></VALUE.ARRAY></PARAMVALUE>");
  const std::size_t end = whole.find_last_not_of('\n') + 1;
  for (std::size_t length = 0; length < end; ++length) {
    EXPECT_EQ(faultOf(whole.substr(0, length)), kNotWellFormed) << whole.substr(0, length);
  }
  EXPECT_EQ(faultOf(whole.substr(0, end)), "none");
}

TEST(Request, IsReadOrRefusedWhicheverByteIsDamaged) {
  const std::string whole = withParameter("<VALUE.REFERENCE>" + kName + "</VALUE.REFERENCE>");
  std::size_t refused = 0;
  for (std::size_t at = 0; at < whole.size(); ++at) {
    for (const char damage : {'<', '>', '&', '"', ' ', '\0', '\xFF', 'x'}) {
      std::string text = whole;
      text[at] = damage;
      refused += faultOf(text) != "none" ? 1 : 0;
    }
  }
  EXPECT_GT(refused, whole.size() * 5);
}

TEST(Request, GivesBackTheNamesThatTheWriterWrites) {
  test::Named from("a \"b\" <c>\n\t");
  test::Named to(" ");
  test::Link link(&from, &to);
  cimxml::Buffer written;
  cimxml::appendInstanceName(written, link, "root/x");

  const auto read = valueOf<ObjectName>(written);

  EXPECT_EQ(toObjectPath(read), link.getPath());
  cimxml::Buffer again;
  cimxml::appendInstanceName(again, read, "");
  EXPECT_EQ(valueOf<ObjectName>(again), read);
}

TEST(Request, GivesBackTheInstancesThatTheWriterWrites) {
  test::Everything instance;
  instance.Text.setValue(" <\r\n> ");
  instance.Texts.setValue({"", "&amp;"});
  cimxml::Buffer written;
  cimxml::InstanceFormat(test::declareEverything(), {}, "root/x").append(written, instance);

  const auto read = valueOf<InstanceValue>(written);

  ASSERT_EQ(read.properties.size(), 11U);
  EXPECT_EQ(std::get<std::string>(read.properties[0].value), " <\r\n> ");
  EXPECT_EQ(read.properties[1].type, "uint8");
  EXPECT_EQ(std::get<StringArray>(read.properties[9].value), (StringArray{"", "&amp;"}));
}

}  // namespace
