#include <gmock/gmock.h>

#include "cimxml/Writer.h"
#include "tests/cimxml/TestInstances.h"

namespace {

using cimxml::Buffer;
using cimxml::KeyBinding;
using cimxml::ObjectName;

constexpr const char* kRootX =
    "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"x\"/></LOCALNAMESPACEPATH>";

std::string escape(std::string_view text) {
  Buffer out;
  cimxml::appendEscaped(out, text);
  return out;
}

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

TEST(Writer, LeavesPlainTextAsItIs) {
  EXPECT_EQ(escape(""), "");
  EXPECT_EQ(escape("a b;/#%\x7F"), "a b;/#%\x7F");
  EXPECT_EQ(escape("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"), "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
}

TEST(Writer, EscapesWhatXmlGivesAMeaning) {
  EXPECT_EQ(escape("<a b='c' d=\"e&f\">"), "&lt;a b=&apos;c&apos; d=&quot;e&amp;f&quot;&gt;");
  EXPECT_EQ(escape("\ta\r\n"), "&#9;a&#13;&#10;");
}

TEST(Writer, EscapesAByteWhereverItStands) {
  constexpr std::size_t kLength = 20;
  for (unsigned byte = 0; byte < 256; ++byte) {
    const std::string sign(1, static_cast<char>(byte));
    for (std::size_t at = 0; at < kLength; ++at) {
      const std::string before(at, 'a');
      const std::string after(kLength - 1 - at, '~');
      ASSERT_EQ(escape(before + sign + after), before + escape(sign) + after)
          << byte << " at " << at;
    }
  }
}

TEST(Writer, PutsTheReplacementCharacterForEachByteThatXmlForbids) {
  EXPECT_EQ(escape(std::string_view("a\0b\x1F", 4)),
            "a\xEF\xBF\xBD"
            "b\xEF\xBF\xBD");
  EXPECT_EQ(escape("\xFF"), "\xEF\xBF\xBD");
  EXPECT_EQ(escape("\xC3z"), "\xEF\xBF\xBDz");
  EXPECT_EQ(escape("z\xE2\x82"), "z\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(escape("\xEF\xBF\xBF"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(Writer, FramesTheAnswerOfAnOperation) {
  Buffer out;
  cimxml::beginOperationAnswer(out, "1&2", "GetClass");
  cimxml::beginReturnValue(out);
  cimxml::endReturnValue(out);
  cimxml::endOperationAnswer(out);
  EXPECT_EQ(out,
            "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
            "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"1&amp;2\""
            " PROTOCOLVERSION=\"1.0\"><SIMPLERSP><IMETHODRESPONSE NAME=\"GetClass\">"
            "<IRETURNVALUE></IRETURNVALUE></IMETHODRESPONSE></SIMPLERSP></MESSAGE></CIM>\n");
}

TEST(Writer, FramesTheAnswerOfAMethod) {
  Buffer out;
  cimxml::beginMethodAnswer(out, "7", "InstallFromURI");
  cimxml::appendMethodReturnValue(out, 4294967295U);
  cimxml::endMethodAnswer(out);
  EXPECT_EQ(out,
            "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
            "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"7\""
            " PROTOCOLVERSION=\"1.0\"><SIMPLERSP><METHODRESPONSE NAME=\"InstallFromURI\">"
            "<RETURNVALUE PARAMTYPE=\"uint32\"><VALUE>4294967295</VALUE></RETURNVALUE>"
            "</METHODRESPONSE></SIMPLERSP></MESSAGE></CIM>\n");
}

TEST(Writer, WritesErrors) {
  EXPECT_EQ(write(cimxml::appendError, 6U, "no \"x\""),
            "<ERROR CODE=\"6\" DESCRIPTION=\"no &quot;x&quot;\"/>");
}

TEST(Writer, WritesOutputParameters) {
  core::CimPropertyUint16_arr codes("Codes", nullptr);
  EXPECT_EQ(write(cimxml::appendOutputParameter, codes, "root/x"),
            "<PARAMVALUE NAME=\"Codes\" PARAMTYPE=\"uint16\"></PARAMVALUE>");
  codes.addValue(3);
  EXPECT_EQ(write(cimxml::appendOutputParameter, codes, "root/x"),
            "<PARAMVALUE NAME=\"Codes\" PARAMTYPE=\"uint16\"><VALUE.ARRAY><VALUE>3</VALUE>"
            "</VALUE.ARRAY></PARAMVALUE>");
  EXPECT_EQ(write(cimxml::appendOperationParameter, "EndOfSequence", "boolean", "TRUE"),
            "<PARAMVALUE NAME=\"EndOfSequence\" PARAMTYPE=\"boolean\"><VALUE>TRUE</VALUE>"
            "</PARAMVALUE>");
}

TEST(Writer, WritesAReferenceThatAMethodHandsOut) {
  test::Named target("a");
  EXPECT_EQ(write(cimxml::appendReferenceParameter, "Job", target, "root/x"),
            std::string("<PARAMVALUE NAME=\"Job\" PARAMTYPE=\"reference\"><VALUE.REFERENCE>"
                        "<LOCALINSTANCEPATH>") +
                kRootX + nameOf(target) + "</LOCALINSTANCEPATH></VALUE.REFERENCE></PARAMVALUE>");
}

TEST(Writer, WritesNamespaces) {
  EXPECT_EQ(write(cimxml::appendLocalNamespacePath, "root/x"), kRootX);
  EXPECT_EQ(write(cimxml::appendLocalNamespacePath, "/root//x/"), kRootX);
  EXPECT_EQ(write(cimxml::appendLocalNamespacePath, ""),
            "<LOCALNAMESPACEPATH></LOCALNAMESPACEPATH>");
  EXPECT_EQ(write(cimxml::appendNamespacePath, "h:5989", "root/x"),
            std::string("<NAMESPACEPATH><HOST>h:5989</HOST>") + kRootX + "</NAMESPACEPATH>");
}

TEST(Writer, WritesClassNames) {
  EXPECT_EQ(write(cimxml::appendClassName, "CIM_Job"), "<CLASSNAME NAME=\"CIM_Job\"/>");
  EXPECT_EQ(write(cimxml::appendClassPath, "CIM_Job", "h", "root/x"),
            std::string("<CLASSPATH><NAMESPACEPATH><HOST>h</HOST>") + kRootX +
                "</NAMESPACEPATH><CLASSNAME NAME=\"CIM_Job\"/></CLASSPATH>");
}

TEST(Writer, WritesAnInstanceNameWithItsKeys) {
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

TEST(Writer, WritesKeysThatAreReferencesWithTheNamespace) {
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

TEST(Writer, WritesTheFullPathOfAnInstance) {
  test::Named instance("a");
  Buffer path;
  cimxml::appendInstancePath(path, instance, "h", "root/x");
  EXPECT_EQ(path, std::string("<INSTANCEPATH><NAMESPACEPATH><HOST>h</HOST>") + kRootX +
                      "</NAMESPACEPATH>" + nameOf(instance) + "</INSTANCEPATH>");
}

TEST(Writer, WritesNamesThatWereRead) {
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

TEST(Writer, WritesTheLoneKeyOfANameWithoutBinding) {
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

TEST(Writer, WritesReferencesInNamesAsFarAsTheyAreKnown) {
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
