#include <gmock/gmock.h>

#include "cimxml/NameWriter.h"
#include "tests/cimxml/TestInstances.h"

namespace {

using cimxml::Buffer;
using cimxml::KeyBinding;
using cimxml::ObjectName;

constexpr const char* kRootX =
    "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"x\"/></LOCALNAMESPACEPATH>";

// What a function of the writer appends.
template <class Function, class... Arguments>
std::string write(Function function, Arguments&&... arguments) {
  Buffer out = "|";
  function(out, std::forward<Arguments>(arguments)...);
  return out.substr(1);
}

std::string nameOf(core::CimInstance& instance) {
  Buffer out;
  cimxml::appendInstanceName(out, instance, "root/x");
  return out;
}

std::string nameOf(const ObjectName& name, std::string_view nameSpace = "") {
  Buffer out;
  cimxml::appendInstanceName(out, name, nameSpace);
  return out;
}

TEST(NameWriter, WritesNamespaces) {
  EXPECT_EQ(write(cimxml::appendLocalNamespacePath, "root/x"), kRootX);
  EXPECT_EQ(write(cimxml::appendLocalNamespacePath, "/root//x/"), kRootX);
  EXPECT_EQ(write(cimxml::appendLocalNamespacePath, ""),
            "<LOCALNAMESPACEPATH></LOCALNAMESPACEPATH>");
  EXPECT_EQ(write(cimxml::appendNamespacePath, "h:5989", "root/x"),
            std::string("<NAMESPACEPATH><HOST>h:5989</HOST>") + kRootX + "</NAMESPACEPATH>");
}

TEST(NameWriter, WritesClassNames) {
  EXPECT_EQ(write(cimxml::appendClassName, "CIM_Job"), "<CLASSNAME NAME=\"CIM_Job\"/>");
  EXPECT_EQ(write(cimxml::appendClassPath, "CIM_Job", "h", "root/x"),
            std::string("<CLASSPATH><NAMESPACEPATH><HOST>h</HOST>") + kRootX +
                "</NAMESPACEPATH><CLASSNAME NAME=\"CIM_Job\"/></CLASSPATH>");
}

TEST(NameWriter, WritesAnInstanceNameWithItsKeys) {
  test::Everything instance;
  EXPECT_EQ(nameOf(instance), "<INSTANCENAME CLASSNAME=\"Test_Everything\"></INSTANCENAME>");
  instance.Text.setKey();
  instance.Text.setValue("a<b");
  instance.Signed.setKey();
  instance.Signed.setValue(-3);
  instance.Truth.setKey();
  instance.Truth.setValue(1);
  EXPECT_EQ(nameOf(instance),
            "<INSTANCENAME CLASSNAME=\"Test_Everything\">"
            "<KEYBINDING NAME=\"Text\"><KEYVALUE VALUETYPE=\"string\" TYPE=\"string\">a&lt;b"
            "</KEYVALUE></KEYBINDING>"
            "<KEYBINDING NAME=\"Signed\"><KEYVALUE VALUETYPE=\"numeric\" TYPE=\"sint8\">-3"
            "</KEYVALUE></KEYBINDING>"
            "<KEYBINDING NAME=\"Truth\"><KEYVALUE VALUETYPE=\"boolean\" TYPE=\"boolean\">TRUE"
            "</KEYVALUE></KEYBINDING></INSTANCENAME>");
}

TEST(NameWriter, WritesKeysThatAreReferencesWithTheNamespace) {
  test::Named from("a");
  test::Link link(&from, nullptr);
  link.To.setText("no path");
  EXPECT_EQ(nameOf(link),
            std::string("<INSTANCENAME CLASSNAME=\"Test_Link\"><KEYBINDING NAME=\"From\">"
                        "<VALUE.REFERENCE><LOCALINSTANCEPATH>") +
                kRootX + nameOf(from) +
                "</LOCALINSTANCEPATH></VALUE.REFERENCE></KEYBINDING><KEYBINDING NAME=\"To\">"
                "<KEYVALUE VALUETYPE=\"string\">no path</KEYVALUE></KEYBINDING></INSTANCENAME>");
}

TEST(NameWriter, WritesTheFullPathOfAnInstance) {
  test::Named instance("a");
  Buffer path;
  cimxml::appendInstancePath(path, instance, "h", "root/x");
  EXPECT_EQ(path, std::string("<INSTANCEPATH><NAMESPACEPATH><HOST>h</HOST>") + kRootX +
                      "</NAMESPACEPATH>" + nameOf(instance) + "</INSTANCEPATH>");
}

TEST(NameWriter, WritesNamesThatWereRead) {
  const ObjectName name{"",
                        "",
                        "C",
                        true,
                        {KeyBinding{"N", KeyBinding::Kind::Numeric, "7", {}},
                         KeyBinding{"B", KeyBinding::Kind::Boolean, "TRUE", {}}}};
  EXPECT_EQ(nameOf(name),
            "<INSTANCENAME CLASSNAME=\"C\"><KEYBINDING NAME=\"N\">"
            "<KEYVALUE VALUETYPE=\"numeric\">7</KEYVALUE></KEYBINDING><KEYBINDING NAME=\"B\">"
            "<KEYVALUE VALUETYPE=\"boolean\">TRUE</KEYVALUE></KEYBINDING></INSTANCENAME>");
}

TEST(NameWriter, WritesTheLoneKeyOfANameWithoutBinding) {
  EXPECT_EQ(
      nameOf(ObjectName{"", "", "C", true, {KeyBinding{"", KeyBinding::Kind::String, "a", {}}}}),
      "<INSTANCENAME CLASSNAME=\"C\"><KEYVALUE VALUETYPE=\"string\">a</KEYVALUE>"
      "</INSTANCENAME>");
}

// Returns what stands for the reference in the name of an instance with that key alone.
std::string referenceTo(const ObjectName& target, std::string_view nameSpace) {
  const std::string text = nameOf(
      ObjectName{"", "", "C", true, {KeyBinding{"", KeyBinding::Kind::Reference, "", {target}}}},
      nameSpace);
  const std::string start = "<INSTANCENAME CLASSNAME=\"C\"><VALUE.REFERENCE>";
  const std::string end = "</VALUE.REFERENCE></INSTANCENAME>";
  EXPECT_THAT(text, testing::AllOf(testing::StartsWith(start), testing::EndsWith(end)));
  return text.substr(start.size(), text.size() - start.size() - end.size());
}

TEST(NameWriter, WritesReferencesInNamesAsFarAsTheyAreKnown) {
  const std::string instance = "<INSTANCENAME CLASSNAME=\"D\"></INSTANCENAME>";
  EXPECT_EQ(referenceTo({"", "", "D", true, {}}, ""), instance);
  EXPECT_EQ(referenceTo({"", "", "D", true, {}}, "root/x"),
            "<LOCALINSTANCEPATH>" + (kRootX + instance) + "</LOCALINSTANCEPATH>");
  EXPECT_EQ(referenceTo({"", "root/x", "D", true, {}}, "root/y"),
            "<LOCALINSTANCEPATH>" + (kRootX + instance) + "</LOCALINSTANCEPATH>");
  EXPECT_EQ(referenceTo({"h", "root/x", "D", true, {}}, ""),
            "<INSTANCEPATH><NAMESPACEPATH><HOST>h</HOST>" +
                (kRootX + ("</NAMESPACEPATH>" + instance)) + "</INSTANCEPATH>");
  EXPECT_EQ(referenceTo({"", "", "D", false, {}}, ""), "<CLASSNAME NAME=\"D\"/>");
  EXPECT_EQ(referenceTo({"", "root/x", "D", false, {}}, ""),
            std::string("<LOCALCLASSPATH>") + kRootX + "<CLASSNAME NAME=\"D\"/></LOCALCLASSPATH>");
}

}  // namespace
