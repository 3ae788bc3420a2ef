#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "cimxml/ObjectName.h"
#include "daemon/MessageFields.h"
#include "tests/daemon/FakeHttpRequest.h"

namespace {

// What a check answers: "200", or status and CIMError.
template <class Check>
std::string answerOf(Check check) {
  try {
    check();
  } catch (const quorveld::FieldsFault& fault) {
    return std::to_string(fault.status()) +
           (fault.cimError().empty() ? "" : " " + fault.cimError());
  }
  return "200";
}

std::string answerOfMessage(const std::string& field, const std::string& value) {
  test::FakeHttpRequest request;
  request.fields[field] = value;
  return answerOf([&request] { quorveld::demandCimMessage(request); });
}

TEST(DemandCimMessage, TakesXmlInUtf8) {
  for (const char* const type :
       {"application/xml", "text/xml", "Application/XML; Charset=UTF-8",
        "text/xml;charset=\"utf-8\"", "application/xml; version=1.0; charset=utf8", "text/xml;",
        "text/xml; ", "text/xml;;charset=utf-8", "text/xml;charset=utf-8;", "text/xml;xcharset=a",
        "text/xml;version=text/html", "text/xml;charset"}) {
    EXPECT_EQ(answerOfMessage("Content-Type", type), "200") << type;
  }
  for (const char* const type :
       {"", "text/html", "application/x-www-form-urlencoded", "text/plain; charset=utf-8",
        "application/xml; charset=us-ascii", "text/xml; charset=", "xml",
        "text/xml;charset=iso-8859-1", "text/xml;;charset=iso-8859-1",
        "application/xml;version=1.0;charset=iso-8859-1", ";text/xml", "text/xml charset=utf-8"}) {
    EXPECT_EQ(answerOfMessage("Content-Type", type), "415") << type;
  }
}

TEST(DemandCimMessage, TakesNoContentEncoding) {
  EXPECT_EQ(answerOfMessage("Content-Encoding", "identity"), "200");
  EXPECT_EQ(answerOfMessage("Content-Encoding", "gzip"), "415");
}

TEST(DemandCimMessage, DemandsTheOperationThatRequestsHave) {
  EXPECT_EQ(answerOfMessage("CIMOperation", "methodcall"), "200");
  EXPECT_EQ(answerOfMessage("CIMOperation", ""), "400 unsupported-operation");
  EXPECT_EQ(answerOfMessage("CIMOperation", "MethodResponse"), "400 unsupported-operation");
}

TEST(DemandCimMessage, TakesOneRequestOfProtocolVersion1) {
  EXPECT_EQ(answerOfMessage("CIMProtocolVersion", ""), "200");
  EXPECT_EQ(answerOfMessage("CIMProtocolVersion", "1.4"), "200");
  EXPECT_EQ(answerOfMessage("CIMProtocolVersion", "2.0"), "501 unsupported-protocol-version");
  EXPECT_EQ(answerOfMessage("CIMBatch", "1"), "501 multiple-requests-unsupported");
}

TEST(DemandCimMessage, TakesEachFieldOnce) {
  const auto answerOfTwo = [](const char* field) {
    test::FakeHttpRequest request;
    request.fields[field] = request.fields[field];
    request.repeated = {field};
    return answerOf([&request] { quorveld::demandCimMessage(request); });
  };
  EXPECT_EQ(answerOfTwo("CIMMethod"), "400 header-mismatch");
  EXPECT_EQ(answerOfTwo("CIMObject"), "400 header-mismatch");
  EXPECT_EQ(answerOfTwo("CIMOperation"), "400 unsupported-operation");
  EXPECT_EQ(answerOfTwo("CIMProtocolVersion"), "400 unsupported-protocol-version");
  EXPECT_EQ(answerOfTwo("CIMBatch"), "400 multiple-requests-unsupported");
  EXPECT_EQ(answerOfTwo("Content-Encoding"), "400");
  EXPECT_EQ(answerOfTwo("Accept"), "200");
}

class DemandSameFields : public testing::Test {
 protected:
  DemandSameFields() {
    m_message.name = "EnumerateInstances";
    m_message.nameSpace = "root/DCIM/zolan";
  }

  // Makes the message call a method of that object.
  void callMethodOf(const std::string& path) {
    m_message.isExtrinsic = true;
    m_message.name = "RequestStateChange";
    m_message.target = cimxml::parseObjectPath(path);
    m_request.fields["CIMMethod"] = "RequestStateChange";
  }

  [[nodiscard]] std::string answerOfObject(const std::string& object) {
    m_request.fields["CIMObject"] = object;
    return answerOf([this] { quorveld::demandSameFields(m_request, m_message); });
  }

  static constexpr const char* kMismatch = "400 header-mismatch";
  test::FakeHttpRequest m_request;
  cimxml::Request m_message;
};

TEST_F(DemandSameFields, TakesTheNamespaceOfAnOperation) {
  for (const char* const object : {"root/DCIM/zolan", "root%2FDCIM%2Fzolan", "ROOT/dcim/Zolan"}) {
    EXPECT_EQ(answerOfObject(object), "200") << object;
  }
  for (const char* const object : {"", "root/interop", "root/DCIM/zolan:Orvex_EthernetPort"}) {
    EXPECT_EQ(answerOfObject(object), kMismatch) << object;
  }
}

TEST_F(DemandSameFields, TakesTheMethodOfTheMessageAlone) {
  for (const char* const method : {"", "GetClass", "EnumerateInstance"}) {
    m_request.fields["CIMMethod"] = method;
    EXPECT_EQ(answerOfObject("root/DCIM/zolan"), kMismatch) << method;
  }
}

TEST_F(DemandSameFields, TakesTheInstanceOfAMethod) {
  callMethodOf("Orvex_ConcreteJob.InstanceID=\"Orvex:Job=1\",Number=5");
  for (const char* const object :
       {"root/DCIM/zolan:Orvex_ConcreteJob.InstanceID=\"Orvex:Job=1\",Number=5",
        "root/dcim/zolan:orvex_concretejob.number=5,instanceid=\"Orvex:Job=1\"",
        "root%2FDCIM%2Fzolan%3AOrvex_ConcreteJob.InstanceID%3D%22Orvex%3AJob%3D1%22%2CNumber%"
        "3D5"}) {
    EXPECT_EQ(answerOfObject(object), "200") << object;
  }
  for (const char* const object :
       {"", "root/DCIM/zolan", "root/DCIM/zolan:Orvex_ConcreteJob",
        "root/interop:Orvex_ConcreteJob.InstanceID=\"Orvex:Job=1\",Number=5",
        "root/DCIM/zolan:Orvex_EthernetPort.InstanceID=\"Orvex:Job=1\",Number=5",
        "root/DCIM/zolan:Orvex_ConcreteJob.InstanceID=\"Orvex:Job=2\",Number=5",
        "root/DCIM/zolan:Orvex_ConcreteJob.InstanceID=\"Orvex:Job=1\",Number=6",
        "root/DCIM/zolan:Orvex_ConcreteJob.InstanceID=\"Orvex:Job=1\"",
        "root/DCIM/zolan:Orvex_ConcreteJob.InstanceID="}) {
    EXPECT_EQ(answerOfObject(object), kMismatch) << object;
  }
}

TEST_F(DemandSameFields, TakesAKeyThatRefersToAnotherInstance) {
  const std::string link = R"(Test_Link.Number=1,Device="Test_Device.Slot=2,Id=\"a \\"b\\"\"")";
  callMethodOf(link);
  ASSERT_EQ(m_message.target.keys.back().kind, cimxml::KeyBinding::Kind::Reference);
  const std::vector<std::string> same = {
      link, R"(test_link.device="test_device.id=\"a \\"b\\"\",slot=2",number=1)"};
  const std::vector<std::string> others = {
      R"(Test_Link.Number=1,Device="Test_Device.Slot=3,Id=\"a \\"b\\"\"")",
      R"(Test_Link.Number=1,Device="Test_Device.Slot=2,Id=\"A \\"b\\"\"")",
      R"(Test_Link.Number=1,Device="Test_Device.Slot=2")",
      R"(Test_Link.Number=1,Device="Test_Device")",
      R"(Test_Link.Number=1,Device="a")",
      R"(Test_Link.Number=1)"};
  const auto expectTheSameOnly = [&] {
    for (const std::string& object : same) {
      EXPECT_EQ(answerOfObject("root/DCIM/zolan:" + object), "200") << object;
    }
    for (const std::string& object : others) {
      EXPECT_EQ(answerOfObject("root/DCIM/zolan:" + object), kMismatch) << object;
    }
  };
  expectTheSameOnly();
  // The same text as a string, as a client may send it.
  m_message.target.keys.back() = {
      "Device", cimxml::KeyBinding::Kind::String, R"(Test_Device.Slot=2,Id="a \"b\"")", {}};
  expectTheSameOnly();
}

TEST_F(DemandSameFields, TakesTheOnlyKeyWithoutItsName) {
  callMethodOf("Orvex_ConcreteJob.InstanceID=\"a\"");
  m_message.target.keys.front().name = "";
  EXPECT_EQ(answerOfObject("root/DCIM/zolan:Orvex_ConcreteJob.InstanceID=\"a\""), "200");
  EXPECT_EQ(answerOfObject("root/DCIM/zolan:Orvex_ConcreteJob.InstanceID=\"b\""), kMismatch);
}

TEST_F(DemandSameFields, TakesTheClassOfAMethod) {
  callMethodOf("Orvex_ConcreteJob");
  EXPECT_EQ(answerOfObject("root/DCIM/zolan:Orvex_ConcreteJob"), "200");
  EXPECT_EQ(answerOfObject("root/DCIM/zolan:Orvex_EthernetPort"), kMismatch);
}

TEST(DecodePercent, DecodesWhatIsWhole) {
  EXPECT_EQ(quorveld::decodePercent("a%2Fb%3a%C3%BC"), "a/b:\xC3\xBC");
  EXPECT_EQ(quorveld::decodePercent("100%"), "100%");
  EXPECT_EQ(quorveld::decodePercent("%2"), "%2");
  EXPECT_EQ(quorveld::decodePercent("%zz%-1%+1%2Fx"), "%zz%-1%+1/x");
  EXPECT_EQ(quorveld::decodePercent("%2525"), "%25");
}

}  // namespace
