#include <gmock/gmock.h>

#include "cimxml/Values.h"
#include "tests/cimxml/TestInstances.h"

namespace {

using cimxml::Buffer;

template <class Property, class Value>
std::string valueOf(Value value) {
  Property property("Some", nullptr);
  property.setValue(value);
  Buffer out;
  EXPECT_TRUE(cimxml::appendValue(out, property, "root/x"));
  return out;
}

std::string referenceTo(const std::string& text) {
  core::CimPropertyRef reference("Some", nullptr);
  reference.setText(text);
  Buffer out;
  return cimxml::appendValue(out, reference, "root/x") ? out : "NULL" + out;
}

TEST(Values, ScalarsAreTexts) {
  EXPECT_EQ(valueOf<core::CimPropertyUint8>(std::uint8_t{255}), "<VALUE>255</VALUE>");
  EXPECT_EQ(valueOf<core::CimPropertyBoolean>(std::uint8_t{1}), "<VALUE>TRUE</VALUE>");
  EXPECT_EQ(valueOf<core::CimPropertyDatetime>(utils::Datetime::fromSeconds(90061)),
            "<VALUE>00000001010101.000000:000</VALUE>");
  EXPECT_EQ(valueOf<core::CimPropertyString>(""), "<VALUE></VALUE>");
  EXPECT_EQ(valueOf<core::CimPropertyString>(" a<b>\n"), "<VALUE> a&lt;b&gt;&#10;</VALUE>");
}

TEST(Values, ArraysHoldTheirElements) {
  EXPECT_EQ(valueOf<core::CimPropertyUint16_arr>(std::vector<std::uint16_t>{7, 65535}),
            "<VALUE.ARRAY><VALUE>7</VALUE><VALUE>65535</VALUE></VALUE.ARRAY>");
  EXPECT_EQ(valueOf<core::CimPropertyString_arr>(std::vector<std::string>{"a&b", ""}),
            "<VALUE.ARRAY><VALUE>a&amp;b</VALUE><VALUE></VALUE></VALUE.ARRAY>");
  EXPECT_EQ(valueOf<core::CimPropertyString_arr>(std::vector<std::string>{}),
            "<VALUE.ARRAY></VALUE.ARRAY>");
}

TEST(Values, NullIsNotWritten) {
  Buffer out = "x";
  EXPECT_FALSE(cimxml::appendValue(out, core::CimPropertyUint16("Some", nullptr), "root/x"));
  EXPECT_EQ(out, "x");
}

TEST(Values, AReferenceLeadsToAnInstanceOfTheNamespace) {
  test::Named target("a");
  core::CimPropertyRef reference("Some", nullptr);
  reference.setTarget(&target);
  Buffer out;
  EXPECT_TRUE(cimxml::appendValue(out, reference, "root/x"));
  EXPECT_EQ(out,
            "<VALUE.REFERENCE><LOCALINSTANCEPATH><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/>"
            "<NAMESPACE NAME=\"x\"/></LOCALNAMESPACEPATH><INSTANCENAME CLASSNAME=\"Test_Named\">"
            "<KEYBINDING NAME=\"Name\"><KEYVALUE VALUETYPE=\"string\" TYPE=\"string\">a</KEYVALUE>"
            "</KEYBINDING></INSTANCENAME></LOCALINSTANCEPATH></VALUE.REFERENCE>");
}

TEST(Values, AReferenceToATextThatIsAPathIsAName) {
  EXPECT_EQ(referenceTo("C.K=\"v\",N=7"),
            "<VALUE.REFERENCE><LOCALINSTANCEPATH><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/>"
            "<NAMESPACE NAME=\"x\"/></LOCALNAMESPACEPATH><INSTANCENAME CLASSNAME=\"C\">"
            "<KEYBINDING NAME=\"K\"><KEYVALUE VALUETYPE=\"string\">v</KEYVALUE></KEYBINDING>"
            "<KEYBINDING NAME=\"N\"><KEYVALUE VALUETYPE=\"numeric\">7</KEYVALUE></KEYBINDING>"
            "</INSTANCENAME></LOCALINSTANCEPATH></VALUE.REFERENCE>");
}

TEST(Values, AReferenceKeepsTheNamespaceOfItsText) {
  EXPECT_EQ(referenceTo("interop:C.K=TRUE"),
            "<VALUE.REFERENCE><LOCALINSTANCEPATH><LOCALNAMESPACEPATH><NAMESPACE NAME=\"interop\"/>"
            "</LOCALNAMESPACEPATH><INSTANCENAME CLASSNAME=\"C\"><KEYBINDING NAME=\"K\">"
            "<KEYVALUE VALUETYPE=\"boolean\">TRUE</KEYVALUE></KEYBINDING></INSTANCENAME>"
            "</LOCALINSTANCEPATH></VALUE.REFERENCE>");
}

TEST(Values, AReferenceToAnyOtherTextIsNull) {
  for (const char* text : {"", "nothing", "a b", "C.", "C.K", "C.K=1,K=2", "<&>"}) {
    EXPECT_EQ(referenceTo(text), "NULL") << text;
  }
}

TEST(Values, ElementsAreNamedForTheType) {
  EXPECT_EQ(cimxml::getPropertyElement(core::kCimDatetime), "PROPERTY");
  EXPECT_EQ(cimxml::getPropertyElement(core::kCimStringArray), "PROPERTY.ARRAY");
  EXPECT_EQ(cimxml::getPropertyElement(core::kCimReference), "PROPERTY.REFERENCE");
  EXPECT_EQ(cimxml::getParameterElement(core::kCimUint16), "PARAMETER");
  EXPECT_EQ(cimxml::getParameterElement(core::kCimUint16Array), "PARAMETER.ARRAY");
  EXPECT_EQ(cimxml::getParameterElement(core::kCimReference), "PARAMETER.REFERENCE");
}

TEST(Values, AttributesTellTheType) {
  Buffer out;
  cimxml::appendTypeAttribute(out, core::kCimUint16Array, "");
  cimxml::appendTypeAttribute(out, core::kCimReference, "CIM_Job");
  cimxml::appendTypeAttribute(out, core::kCimReference, "");
  EXPECT_EQ(out, " TYPE=\"uint16\" REFERENCECLASS=\"CIM_Job\"");
}

}  // namespace
