#include <gmock/gmock.h>
#include <stdexcept>
#include <string>
#include <vector>

#include "Utils/Exception.h"
#include "core/CimPropertyRef.h"
#include "tests/wbem/LookingFixture.h"

namespace {

using test::className;
using test::given;
using test::IsError;
using test::objectName;
using test::texts;
using testing::_;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kFirst = "Test_Device.InstanceID=\"a\",Slot=1";

std::string returnValue(unsigned value) {
  return "<RETURNVALUE PARAMTYPE=\"uint32\"><VALUE>" + std::to_string(value) +
         "</VALUE></RETURNVALUE>";
}

class MethodOperations : public test::ServerFixture {
 protected:
  std::string invokeTry(std::vector<cimxml::Parameter> arguments = {}) {
    return invoke(objectName(kFirst), "Try", std::move(arguments));
  }

  // Sets what the method does with its input arguments.
  template <class Look>
  void onTry(Look look) {
    m_agent.invocation = [this, look](core::CimPropertyList& in, core::CimPropertyList&,
                                      core::CimInstance**) {
      m_isInvoked = true;
      look(in);
      return 0U;
    };
  }

  template <class Argument>
  static const Argument& argument(core::CimPropertyList& in, const char* name) {
    return dynamic_cast<const Argument&>(*in.get(name));
  }

  bool m_isInvoked = false;
};

TEST_F(MethodOperations, AnswerTheReturnValue) {
  m_agent.invocation = [](core::CimPropertyList&, core::CimPropertyList&, core::CimInstance**) {
    return 4294967295U;
  };
  EXPECT_EQ(invokeTry(), returnValue(4294967295U));
}

TEST_F(MethodOperations, HandOverArgumentsOfAllTypes) {
  onTry([](core::CimPropertyList& in) {
    EXPECT_EQ(in.size(), 9U);
    EXPECT_EQ(argument<core::CimPropertyUint16>(in, "Number").getValue(), 7);
    EXPECT_EQ(argument<core::CimPropertyUint64>(in, "Wide").getValue(), 18446744073709551615U);
    EXPECT_EQ(argument<core::CimPropertySint8>(in, "Small").getValue(), -3);
    EXPECT_EQ(argument<core::CimPropertyBoolean>(in, "Flag").getValue(), 1);
    EXPECT_EQ(argument<core::CimPropertyDatetime>(in, "When").getValue().value, 2'000'000U);
    EXPECT_EQ(argument<core::CimPropertyString>(in, "Text").getValue(), "a\nb");
    EXPECT_THAT(argument<core::CimPropertyUint16_arr>(in, "Numbers").getValue(), ElementsAre(3, 5));
    EXPECT_THAT(argument<core::CimPropertyString_arr>(in, "Texts").getValue(),
                ElementsAre("x", ""));
    EXPECT_EQ(argument<core::CimPropertyRef>(in, "Peer").toString(),
              "Test_Port.InstanceID=\"p\",Slot=1");
  });
  cimxml::ObjectName peer = objectName("test_port.slot=1,instanceid=\"p\"");
  peer.host = "anywhere";
  peer.nameSpace = "root/test";
  EXPECT_EQ(
      invokeTry({given("NUMBER", "7", "uint16"), given("wide", "18446744073709551615", "uint64"),
                 given("Small", "-3", "sint8"), given("Flag", "true", "boolean"),
                 given("When", "00000000000002.000000:000", "datetime"),
                 given("Text", "a\nb", "string"), given("Numbers", texts({"3", "5"}), "uint16"),
                 given("Texts", texts({"x", ""}), "string"), given("Peer", peer, "reference")}),
      returnValue(0));
  EXPECT_TRUE(m_isInvoked);
}

TEST_F(MethodOperations, TellNullFromMissing) {
  onTry([](core::CimPropertyList& in) {
    ASSERT_NE(in.get("Text"), nullptr);
    EXPECT_TRUE(in.get("Text")->isNull());
    EXPECT_TRUE(in.get("Peer")->isNull());
    EXPECT_EQ(in.get("Number"), nullptr);
  });
  invokeTry({given("Text", cimxml::Value(), "string"), given("Peer", cimxml::Value())});
  EXPECT_TRUE(m_isInvoked);
}

TEST_F(MethodOperations, AnswerTheOutputsThatHaveAValue) {
  m_agent.invocation = [](core::CimPropertyList&, core::CimPropertyList& out, core::CimInstance**) {
    EXPECT_EQ(out.size(), 2U);
    EXPECT_TRUE(out.get("Answer")->isNull());
    dynamic_cast<core::CimPropertyUint16_arr&>(*out.get("Answers")).setValue({7});
    return 0U;
  };
  EXPECT_EQ(invokeTry(), returnValue(0) +
                             "<PARAMVALUE NAME=\"Answers\" PARAMTYPE=\"uint16\"><VALUE.ARRAY>"
                             "<VALUE>7</VALUE></VALUE.ARRAY></PARAMVALUE>");
}

TEST_F(MethodOperations, AnswerTheJob) {
  m_agent.invocation = [this](core::CimPropertyList&, core::CimPropertyList& out,
                              core::CimInstance** job) {
    *job = m_agent.jobs.getInstances().first();
    dynamic_cast<core::CimPropertyString&>(*out.get("Answer")).setValue("<started>");
    return 4096U;
  };
  EXPECT_EQ(
      invokeTry({given("Job", cimxml::Value())}),
      returnValue(4096) +
          "<PARAMVALUE NAME=\"Job\" PARAMTYPE=\"reference\"><VALUE.REFERENCE>"
          "<LOCALINSTANCEPATH>" +
          test::localPath("test",
                          "<INSTANCENAME CLASSNAME=\"Test_Job\"><KEYBINDING "
                          "NAME=\"InstanceID\"><KEYVALUE VALUETYPE=\"string\" TYPE=\"string\">job 2"
                          "</KEYVALUE></KEYBINDING></INSTANCENAME>") +
          "</LOCALINSTANCEPATH></VALUE.REFERENCE></PARAMVALUE>"
          "<PARAMVALUE NAME=\"Answer\" PARAMTYPE=\"string\"><VALUE>&lt;started&gt;</VALUE>"
          "</PARAMVALUE>");
}

struct WrongArgument {
  cimxml::Parameter argument;
  const char* text;
};

TEST_F(MethodOperations, RefuseWrongArguments) {
  onTry([](core::CimPropertyList&) {});
  cimxml::ObjectName foreign = objectName(kFirst);
  foreign.nameSpace = "root/other";
  for (const WrongArgument& wrong : {
           WrongArgument{given("Number", "65536"), "Number of Try: "},
           {given("Number", "x"), "Number of Try: "},
           {given("Number", "7", "uint32"), "Number of Try: is a uint16, no uint32"},
           {given("Number", texts({"7"})), "Number of Try: "},
           {given("Small", "200"), "Small of Try: "},
           {given("Flag", "2"), "Flag of Try: "},
           {given("When", "yesterday"), "When of Try: "},
           {given("Numbers", "7"), "Numbers of Try: "},
           {given("Numbers", texts({"7", "-1"})), "Numbers of Try: "},
           {given("Texts", cimxml::StringArray{std::nullopt}), "Texts of Try: "},
           {given("Text", objectName(kFirst)), "Text of Try: "},
           {given("Peer", "a b"), "Peer of Try: "},
           {given("Peer", foreign), "Peer of Try: there is no namespace "},
           {given("Surprise", "1"), "Surprise of Try: there is no such argument"},
           {given("Answer", "1"), "Answer of Try: is an output argument"},
           {given("Job", objectName(kFirst)), "Job of Try: is an output argument"},
       }) {
    EXPECT_THAT(invokeTry({wrong.argument}), IsError(4, HasSubstr(wrong.text)));
  }
  EXPECT_THAT(invokeTry({given("Number", "1"), given("number", "2")}),
              IsError(4, "Number of Try: is given twice"));
  EXPECT_FALSE(m_isInvoked);
}

TEST_F(MethodOperations, RefuseWhatThereIsNot) {
  EXPECT_THAT(invoke(objectName(kFirst), "Sing"),
              IsError(17, "class Test_Device has no method &apos;Sing&apos;"));
  EXPECT_THAT(invoke(className("Test_Device"), "Sing"), IsError(17, _));
  EXPECT_THAT(invoke(className("Test_Device"), "Try"), IsError(4, HasSubstr("of instances")));
  EXPECT_THAT(invoke(objectName(kFirst), "Unregistered"),
              IsError(16, "instances of Test_Device do not offer Unregistered"));
  EXPECT_THAT(invoke(objectName("Test_Device.InstanceID=\"b\",Slot=2"), "Try"), IsError(16, _));
  EXPECT_THAT(invoke(objectName("Test_Device.InstanceID=\"z\",Slot=2"), "Try"), IsError(6, _));
  EXPECT_THAT(invoke(objectName("Test_No.InstanceID=\"z\""), "Try"), IsError(5, _));
  EXPECT_THAT(invoke(objectName(kFirst), "Try", {}, "root/no"), IsError(3, _));
  EXPECT_THAT(invoke(objectName(kFirst), "Try", {}, test::kInterop), IsError(5, _));
}

TEST_F(MethodOperations, TakeTheNameInAnyCase) {
  EXPECT_EQ(invoke(objectName(kFirst), "TRY"), returnValue(0));
}

template <class Error>
test::Invocation throwing() {
  return
      [](core::CimPropertyList&, core::CimPropertyList& out, core::CimInstance**) -> std::uint32_t {
        dynamic_cast<core::CimPropertyString&>(*out.get("Answer")).setValue("half done");
        throw Error("it <broke>");
      };
}

TEST_F(MethodOperations, AnswerWhatTheMethodThrows) {
  m_agent.invocation = throwing<utils::ENotSupported>();
  EXPECT_THAT(invokeTry(), IsError(7, "Quorvel: ENotSupported:it &lt;broke&gt;"));
  m_agent.invocation = throwing<utils::EInvalidParameter>();
  EXPECT_THAT(invokeTry(), IsError(4, "Quorvel: EInvalidParameter:it &lt;broke&gt;"));
  m_agent.invocation = throwing<utils::ESyntaxError>();
  EXPECT_THAT(invokeTry(), IsError(4, "Quorvel: ESyntaxError:it &lt;broke&gt;"));
  m_agent.invocation = throwing<utils::EForbidden>();
  EXPECT_THAT(invokeTry(), IsError(2, "Quorvel: EForbidden:it &lt;broke&gt;"));
  m_agent.invocation = throwing<utils::EUnspecifiedError>();
  EXPECT_THAT(invokeTry(), IsError(1, "Quorvel: EUnspecifiedError:it &lt;broke&gt;"));
  m_agent.invocation = throwing<std::runtime_error>();
  EXPECT_THAT(invokeTry(), IsError(1, "it &lt;broke&gt;"));
}

// -- what is looked for ahead --

using LookingMethodOperations = test::LookingFixture;

TEST_F(LookingMethodOperations, HaveTheFilesOfTheirArgumentsLookedForBeforeTheRequest) {
  invoke(objectName(kFirst), "Try",
         {given("Peer", objectName("Test_Port.InstanceID=\"p\",Slot=1"))});
  invoke(objectName(kFirst), "Try", {given("Text", "Test_Port.InstanceID=\"p\",Slot=1")});
  EXPECT_THAT(m_looking.lookedFor,
              ElementsAre(ElementsAre("Test_Device", "Test_Port"), ElementsAre("Test_Device")));
}

}  // namespace
