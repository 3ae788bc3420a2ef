#include <gmock/gmock.h>

#include "cimxml/Buffer.h"
#include "cimxml/Request.h"
#include "cimxml/RequestWriter.h"
#include "core/CimPropertyTypes.h"

namespace {

using cimxml::Buffer;
using cimxml::KeyBinding;
using cimxml::ObjectName;
using cimxml::Request;
using testing::ElementsAre;
using testing::SizeIs;

constexpr const char* kNameSpace = "root/DCIM/zolan";

ObjectName job() {
  ObjectName name;
  name.className = "Orvex_ConcreteJob";
  name.isInstance = true;
  name.keys = {{"InstanceID", KeyBinding::Kind::String, "<Job#1> & \"more\"", {}}};
  return name;
}

ObjectName association() {
  ObjectName name;
  name.className = "Link";
  name.isInstance = true;
  name.keys = {{"Job", KeyBinding::Kind::Reference, "", {job()}},
               {"Number", KeyBinding::Kind::Numeric, "7", {}},
               {"Truth", KeyBinding::Kind::Boolean, "TRUE", {}}};
  return name;
}

// What a server reads of the request whose parts `append` adds.
template <class Append>
Request operation(Append append) {
  Buffer out = "left alone";
  out.clear();
  cimxml::beginOperationRequest(out, "42", kNameSpace, "GetInstance");
  append(out);
  cimxml::endOperationRequest(out);
  return cimxml::parseRequest(out);
}

template <class Append>
Request method(Append append) {
  Buffer out;
  cimxml::beginMethodRequest(out, "43", kNameSpace, "RequestStateChange", job());
  append(out);
  cimxml::endMethodRequest(out);
  return cimxml::parseRequest(out);
}

TEST(RequestWriter, BeginsAndEndsAnOperation) {
  const Request request = operation([](Buffer&) {});
  EXPECT_FALSE(request.isExtrinsic);
  EXPECT_EQ(request.messageId, "42");
  EXPECT_EQ(request.name, "GetInstance");
  EXPECT_EQ(request.nameSpace, kNameSpace);
  EXPECT_THAT(request.parameters, SizeIs(0));
}

TEST(RequestWriter, WritesTheDocumentByteByByte) {
  Buffer out;
  cimxml::beginOperationRequest(out, "1", "root/interop", "EnumerateInstances");
  cimxml::appendClassNameParameter(out, "ClassName", "CIM_Job");
  cimxml::appendBooleanParameter(out, "LocalOnly", false);
  cimxml::appendStringParameter(out, "Query", "a < b");
  cimxml::endOperationRequest(out);
  EXPECT_EQ(out,
            "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
            "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"1\" PROTOCOLVERSION=\"1.0\">"
            "<SIMPLEREQ><IMETHODCALL NAME=\"EnumerateInstances\"><LOCALNAMESPACEPATH>"
            "<NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"interop\"/></LOCALNAMESPACEPATH>"
            "<IPARAMVALUE NAME=\"ClassName\"><CLASSNAME NAME=\"CIM_Job\"/></IPARAMVALUE>"
            "<IPARAMVALUE NAME=\"LocalOnly\"><VALUE>FALSE</VALUE></IPARAMVALUE>"
            "<IPARAMVALUE NAME=\"Query\"><VALUE>a &lt; b</VALUE></IPARAMVALUE>"
            "</IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>\n");
}

TEST(RequestWriter, NamesInstancesWithEveryKindOfKey) {
  const Request request = operation([](Buffer& out) {
    cimxml::appendInstanceNameParameter(out, "InstanceName", association(), kNameSpace);
  });
  ASSERT_THAT(request.parameters, SizeIs(1));
  const auto& name = std::get<ObjectName>(request.parameters[0].value);
  ASSERT_THAT(name.keys, SizeIs(3));
  ASSERT_THAT(name.keys[0].reference, SizeIs(1));
  EXPECT_EQ(name.keys[0].reference[0].keys, job().keys);
  EXPECT_EQ(name.keys[0].reference[0].nameSpace, kNameSpace);
  EXPECT_EQ(name.keys[1], association().keys[1]);
  EXPECT_EQ(name.keys[2], association().keys[2]);
}

TEST(RequestWriter, CallsAMethodOfAnInstance) {
  const Request request = method([](Buffer&) {});
  EXPECT_TRUE(request.isExtrinsic);
  EXPECT_EQ(request.messageId, "43");
  EXPECT_EQ(request.name, "RequestStateChange");
  EXPECT_EQ(request.nameSpace, kNameSpace);
  EXPECT_EQ(request.target.className, "Orvex_ConcreteJob");
  EXPECT_EQ(request.target.keys, job().keys);
}

TEST(RequestWriter, WritesArgumentsOfEveryShape) {
  core::CimPropertyUint16 number("Number", nullptr);
  number.setValue(4);
  core::CimPropertyString_arr texts("Texts", nullptr);
  texts.setValue({"", "<a>"});
  core::CimPropertyString missing("Missing", nullptr);
  const Request request = method([&](Buffer& out) {
    cimxml::appendArgument(out, number);
    cimxml::appendArgument(out, texts);
    cimxml::appendArgument(out, missing);
  });
  ASSERT_THAT(request.parameters, SizeIs(3));
  EXPECT_EQ(request.parameters[0].name, "Number");
  EXPECT_EQ(request.parameters[0].type, "uint16");
  EXPECT_EQ(std::get<std::string>(request.parameters[0].value), "4");
  EXPECT_EQ(request.parameters[1].type, "string");
  EXPECT_THAT(std::get<cimxml::StringArray>(request.parameters[1].value), ElementsAre("", "<a>"));
  EXPECT_TRUE(std::holds_alternative<std::monostate>(request.parameters[2].value));
}

TEST(RequestWriter, WritesReferencesToInstancesAndToNothing) {
  const ObjectName target = job();
  const Request request = method([&](Buffer& out) {
    cimxml::appendReferenceArgument(out, "Target", &target, kNameSpace);
    cimxml::appendReferenceArgument(out, "Collection", nullptr, kNameSpace);
  });
  ASSERT_THAT(request.parameters, SizeIs(2));
  EXPECT_EQ(request.parameters[0].type, "reference");
  const auto& name = std::get<ObjectName>(request.parameters[0].value);
  EXPECT_EQ(name.nameSpace, kNameSpace);
  EXPECT_EQ(name.keys, job().keys);
  EXPECT_TRUE(std::holds_alternative<std::monostate>(request.parameters[1].value));
}

}  // namespace
