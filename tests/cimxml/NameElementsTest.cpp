#include <gmock/gmock.h>

#include "cimxml/NameElements.h"
#include "cimxml/Request.h"

namespace {

using cimxml::KeyBinding;
using cimxml::ObjectName;

const std::string kNamespace =
    "<LOCALNAMESPACEPATH><NAMESPACE NAME='root'/> <NAMESPACE NAME='x'/></LOCALNAMESPACEPATH>";
const std::string kNamespacePath =
    "<NAMESPACEPATH><HOST>h:5989</HOST>" + kNamespace + "</NAMESPACEPATH>";

ObjectName read(const std::string& text) {
  pugi::xml_document document;
  EXPECT_TRUE(document.load_string(text.c_str()));
  return cimxml::readName(document.document_element());
}

std::string problemOf(const std::string& text) {
  try {
    static_cast<void>(read(text));
  } catch (const cimxml::RequestFault& fault) {
    return fault.what();
  }
  return "none";
}

std::vector<KeyBinding> keysOf(const std::string& keys) {
  return read("<INSTANCENAME CLASSNAME='C'>" + keys + "</INSTANCENAME>").keys;
}

KeyBinding::Kind kindOf(const std::string& attributes) {
  return keysOf("<KEYVALUE " + attributes + ">1</KEYVALUE>").at(0).kind;
}

TEST(NameElements, AreClassesAndInstancesInThreeForms) {
  EXPECT_EQ(read("<CLASSNAME NAME='C'/>"), (ObjectName{"", "", "C", false, {}}));
  EXPECT_EQ(read("<LOCALCLASSPATH>" + kNamespace + "<CLASSNAME NAME='C'/></LOCALCLASSPATH>"),
            (ObjectName{"", "root/x", "C", false, {}}));
  EXPECT_EQ(read("<CLASSPATH>" + kNamespacePath + "<CLASSNAME NAME='C'/></CLASSPATH>"),
            (ObjectName{"h:5989", "root/x", "C", false, {}}));
  EXPECT_EQ(read("<INSTANCENAME CLASSNAME='C'/>"), (ObjectName{"", "", "C", true, {}}));
  EXPECT_EQ(read("<LOCALINSTANCEPATH>" + kNamespace +
                 "<INSTANCENAME CLASSNAME='C'/></LOCALINSTANCEPATH>"),
            (ObjectName{"", "root/x", "C", true, {}}));
  EXPECT_EQ(
      read("<INSTANCEPATH>" + kNamespacePath + "<INSTANCENAME CLASSNAME='C'/></INSTANCEPATH>"),
      (ObjectName{"h:5989", "root/x", "C", true, {}}));
}

TEST(NameElements, HoldKeysInTheirOrder) {
  EXPECT_THAT(keysOf("<KEYBINDING NAME='b'><KEYVALUE> v </KEYVALUE></KEYBINDING>"
                     "<KEYBINDING NAME='a'><KEYVALUE VALUETYPE='numeric'>7</KEYVALUE></KEYBINDING>"
                     "<KEYBINDING NAME='c'><VALUE.REFERENCE><INSTANCENAME CLASSNAME='D'/>"
                     "</VALUE.REFERENCE></KEYBINDING>"),
              testing::ElementsAre(
                  KeyBinding{"b", KeyBinding::Kind::String, " v ", {}},
                  KeyBinding{"a", KeyBinding::Kind::Numeric, "7", {}},
                  KeyBinding{"c", KeyBinding::Kind::Reference, "", {{"", "", "D", true, {}}}}));
}

TEST(NameElements, HoldOneKeyWithoutAName) {
  EXPECT_THAT(keysOf("<KEYVALUE VALUETYPE='boolean'>TRUE</KEYVALUE>"),
              testing::ElementsAre(KeyBinding{"", KeyBinding::Kind::Boolean, "TRUE", {}}));
  EXPECT_THAT(keysOf("<VALUE.REFERENCE><CLASSNAME NAME='D'/></VALUE.REFERENCE>"),
              testing::ElementsAre(
                  KeyBinding{"", KeyBinding::Kind::Reference, "", {{"", "", "D", false, {}}}}));
}

TEST(NameElements, TellTheKindOfAKeyByEitherAttribute) {
  EXPECT_EQ(kindOf(""), KeyBinding::Kind::String);
  EXPECT_EQ(kindOf("TYPE='string'"), KeyBinding::Kind::String);
  EXPECT_EQ(kindOf("TYPE='datetime'"), KeyBinding::Kind::String);
  EXPECT_EQ(kindOf("TYPE='uint64'"), KeyBinding::Kind::Numeric);
  EXPECT_EQ(kindOf("TYPE='boolean'"), KeyBinding::Kind::Boolean);
  EXPECT_EQ(kindOf("VALUETYPE='string' TYPE='uint8'"), KeyBinding::Kind::String);
}

TEST(NameElements, AreRefusedInAnyOtherForm) {
  EXPECT_EQ(problemOf("<VALUE/>"), "<VALUE> names no object");
  EXPECT_EQ(problemOf("<CLASSNAME/>"), "<CLASSNAME> lacks the attribute NAME");
  EXPECT_EQ(problemOf("<CLASSNAME NAME='C'><b/></CLASSNAME>"), "<b> has no place in <CLASSNAME>");
  EXPECT_EQ(problemOf("<INSTANCENAME/>"), "<INSTANCENAME> lacks the attribute CLASSNAME");
  EXPECT_EQ(problemOf("<LOCALCLASSPATH><CLASSNAME NAME='C'/></LOCALCLASSPATH>"),
            "<LOCALCLASSPATH> lacks <LOCALNAMESPACEPATH> where <CLASSNAME> stands");
  EXPECT_EQ(
      problemOf("<LOCALCLASSPATH><LOCALNAMESPACEPATH/><CLASSNAME NAME='C'/></LOCALCLASSPATH>"),
      "<LOCALNAMESPACEPATH> lacks <NAMESPACE>");
  EXPECT_EQ(problemOf("<CLASSPATH><NAMESPACEPATH>" + kNamespace +
                      "</NAMESPACEPATH><CLASSNAME NAME='C'/></CLASSPATH>"),
            "<NAMESPACEPATH> lacks <HOST> where <LOCALNAMESPACEPATH> stands");
  EXPECT_EQ(problemOf("<INSTANCEPATH>" + kNamespacePath + "</INSTANCEPATH>"),
            "<INSTANCEPATH> lacks <INSTANCENAME>");
  const std::string start = "<INSTANCENAME CLASSNAME='C'>";
  const std::string end = "</INSTANCENAME>";
  EXPECT_EQ(problemOf(start + "<KEYVALUE/><KEYVALUE/>" + end),
            "<KEYVALUE> has no place in <INSTANCENAME>");
  EXPECT_EQ(problemOf(start + "<VALUE/>" + end), "<VALUE> is no key");
  EXPECT_EQ(problemOf(start + "<KEYVALUE VALUETYPE='uint8'/>" + end), "a key of the type uint8");
  EXPECT_EQ(problemOf(start + "<KEYBINDING><KEYVALUE/></KEYBINDING>" + end),
            "<KEYBINDING> lacks the attribute NAME");
  EXPECT_EQ(problemOf(start + "<KEYBINDING NAME=''><KEYVALUE/></KEYBINDING>" + end),
            "a key of C has an empty name");
  EXPECT_EQ(problemOf(start + "<KEYBINDING NAME='k'/>" + end), "<KEYBINDING> lacks an element");
  EXPECT_EQ(problemOf(start + "<VALUE.REFERENCE/>" + end), "<VALUE.REFERENCE> lacks an element");
}

}  // namespace
