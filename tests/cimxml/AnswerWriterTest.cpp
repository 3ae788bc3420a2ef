#include <gmock/gmock.h>

#include "cimxml/AnswerWriter.h"
#include "cimxml/NameWriter.h"
#include "tests/cimxml/TestInstances.h"

namespace {

using cimxml::Buffer;

// What a function of the writer appends.
template <class Function, class... Arguments>
std::string write(Function function, Arguments&&... arguments) {
  Buffer out = "|";
  function(out, std::forward<Arguments>(arguments)...);
  return out.substr(1);
}

TEST(AnswerWriter, FramesTheAnswerOfAnOperation) {
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

TEST(AnswerWriter, FramesTheAnswerOfAMethod) {
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

TEST(AnswerWriter, WritesErrors) {
  EXPECT_EQ(write(cimxml::appendError, cimxml::StatusCode::NotFound, "no \"x\""),
            "<ERROR CODE=\"6\" DESCRIPTION=\"no &quot;x&quot;\"/>");
}

TEST(AnswerWriter, WritesOutputParameters) {
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

TEST(AnswerWriter, WritesAClassThatAnOperationHandsOut) {
  core::ClassDeclaration declaration;
  declaration.name = "Test_Class";
  EXPECT_EQ(write(cimxml::appendClassParameter, "Result", declaration, cimxml::ClassFormat()),
            "<PARAMVALUE NAME=\"Result\"><CLASS NAME=\"Test_Class\"></CLASS></PARAMVALUE>");
}

TEST(AnswerWriter, WritesAReferenceThatAMethodHandsOut) {
  test::Named target("a");
  Buffer name;
  cimxml::appendInstanceName(name, target, "root/x");
  EXPECT_EQ(write(cimxml::appendReferenceParameter, "Job", target, "root/x"),
            "<PARAMVALUE NAME=\"Job\" PARAMTYPE=\"reference\"><VALUE.REFERENCE>"
            "<LOCALINSTANCEPATH><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/>"
            "<NAMESPACE NAME=\"x\"/></LOCALNAMESPACEPATH>" +
                name + "</LOCALINSTANCEPATH></VALUE.REFERENCE></PARAMVALUE>");
}

}  // namespace
