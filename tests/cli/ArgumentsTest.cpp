#include <gmock/gmock.h>

#include "cli/Arguments.h"
#include "cli/Context.h"
#include "client/Fault.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"

namespace {

using cli::Arguments;
using cli::makeArgument;
using testing::ElementsAre;
using testing::HasSubstr;

// Returns the value of an argument made from the text.
template <class Property>
auto valueOf(core::CimType type, const std::string& text) {
  const auto argument = makeArgument("A", type, text);
  EXPECT_EQ(argument->getType(), type);
  EXPECT_FALSE(argument->isNull());
  return dynamic_cast<Property&>(*argument).getValue();
}

// Returns the message of the usage fault that the call ends in; empty when there was none.
template <class Call>
std::string usageFaultOf(Call call) {
  try {
    call();
  } catch (const client::Fault& fault) {
    EXPECT_EQ(fault.kind(), client::Fault::Kind::Usage);
    return fault.what();
  }
  return "";
}

std::string refusalOf(core::CimType type, const std::string& text) {
  return usageFaultOf([&] { static_cast<void>(makeArgument("A", type, text)); });
}

std::string refusalOf(const std::string& method, const std::vector<std::string>& texts) {
  return usageFaultOf([&] { Arguments{method, texts}; });
}

TEST(Argument, TakesNumbersOverTheWholeRangeOfTheirType) {
  EXPECT_EQ(valueOf<core::CimPropertyUint8>(core::kCimUint8, "255"), 255);
  EXPECT_EQ(valueOf<core::CimPropertySint8>(core::kCimSint8, "-128"), -128);
  EXPECT_EQ(valueOf<core::CimPropertyUint16>(core::kCimUint16, "65535"), 65535);
  EXPECT_EQ(valueOf<core::CimPropertyUint32>(core::kCimUint32, "4294967295"), 4294967295U);
  EXPECT_EQ(valueOf<core::CimPropertyUint64>(core::kCimUint64, "18446744073709551615"),
            18446744073709551615U);
}

TEST(Argument, TakesHexadecimalNumbers) {
  EXPECT_EQ(valueOf<core::CimPropertyUint32>(core::kCimUint32, "0xffFFffFF"), 0xFFFFFFFFU);
  EXPECT_EQ(valueOf<core::CimPropertySint8>(core::kCimSint8, "0X7f"), 127);
}

TEST(Argument, RefusesWhatIsNoNumberOfItsType) {
  EXPECT_EQ(refusalOf(core::kCimUint8, "256"),
            "argument A: '256' is no whole number from 0 to 255");
  EXPECT_EQ(refusalOf(core::kCimSint8, "128"),
            "argument A: '128' is no whole number from -128 to 127");
  for (const char* text : {"-1", "+1", " 1", "1 ", "1x", "0x", "0x-1", "x"}) {
    EXPECT_THAT(refusalOf(core::kCimUint32, text), HasSubstr(text));
  }
  EXPECT_THAT(refusalOf(core::kCimSint8, "0x-1"), HasSubstr("no whole number"));
}

TEST(Argument, TakesTruthValues) {
  EXPECT_EQ(valueOf<core::CimPropertyBoolean>(core::kCimBoolean, "true"), 1);
  EXPECT_EQ(valueOf<core::CimPropertyBoolean>(core::kCimBoolean, "1"), 1);
  EXPECT_EQ(valueOf<core::CimPropertyBoolean>(core::kCimBoolean, "false"), 0);
  EXPECT_EQ(valueOf<core::CimPropertyBoolean>(core::kCimBoolean, "0"), 0);
  EXPECT_EQ(refusalOf(core::kCimBoolean, "yes"),
            "argument A: 'yes' is no truth value; write true or false");
}

TEST(Argument, TakesTextsAsTheyAreOrFromWithinDoubleQuotes) {
  EXPECT_EQ(valueOf<core::CimPropertyString>(core::kCimString, "a, b=c "), "a, b=c ");
  EXPECT_EQ(valueOf<core::CimPropertyString>(core::kCimString, "\"\""), "");
  EXPECT_EQ(valueOf<core::CimPropertyString>(core::kCimString, R"("say \"a\"")"), "say \"a\"");
}

TEST(Argument, TakesAPathAsAReferenceUnchanged) {
  const auto argument = makeArgument("A", core::kCimReference, "C.K=\"v\"");
  EXPECT_EQ(argument->getType(), core::kCimReference);
  EXPECT_EQ(argument->toString(), "C.K=\"v\"");
}

TEST(Argument, TakesArraysBetweenCommas) {
  EXPECT_THAT(valueOf<core::CimPropertyUint16_arr>(core::kCimUint16Array, "3, 5,0x8000"),
              ElementsAre(3, 5, 32768));
  EXPECT_THAT(valueOf<core::CimPropertyString_arr>(core::kCimStringArray, R"(,IMG_PXE,"a,b")"),
              ElementsAre("", "IMG_PXE", "a,b"));
  EXPECT_THAT(refusalOf(core::kCimUint16Array, "3,,5"), HasSubstr("'' is no whole number"));
  EXPECT_THAT(refusalOf(core::kCimUint16Array, "70000"), HasSubstr("from 0 to 65535"));
}

TEST(Argument, IsNullForAnEmptyText) {
  for (const core::CimType type :
       {core::kCimUint8, core::kCimSint8, core::kCimUint16, core::kCimUint16Array, core::kCimUint32,
        core::kCimUint64, core::kCimString, core::kCimStringArray, core::kCimBoolean,
        core::kCimReference}) {
    const auto argument = makeArgument("A", type, "");
    EXPECT_EQ(argument->getType(), type);
    EXPECT_TRUE(argument->isNull()) << type;
  }
}

TEST(Argument, RefusesADatetime) {
  EXPECT_EQ(refusalOf(core::kCimDatetime, "20260101000000.000000+000"),
            "argument A: a date-time cannot be given on the command line");
}

TEST(Arguments, HaveTheTypesOfTheSignature) {
  Arguments arguments("InstallFromURI", {"InstallOptions=3,5", "URI=file:///a=b", "Target=C.K=1",
                                         "InstallOptionsValues="});
  EXPECT_EQ(arguments.in().get("InstallOptions")->getType(), core::kCimUint16Array);
  EXPECT_EQ(arguments.in().get("URI")->toString(), "file:///a=b");
  EXPECT_EQ(arguments.in().get("Target")->getType(), core::kCimReference);
  EXPECT_TRUE(arguments.in().get("InstallOptionsValues")->isNull());
}

TEST(Arguments, AreMissingWhenTheirNameIsLeftOut) {
  Arguments arguments("InstallFromURI", {});
  EXPECT_EQ(arguments.in().get("URI"), nullptr);
}

TEST(Arguments, HoldTheOutputsOfTheSignatureAsNull) {
  Arguments arguments("CheckSoftwareIdentity", {});
  core::CimProperty* output = arguments.out().get("InstallCharacteristics");
  ASSERT_NE(output, nullptr);
  EXPECT_EQ(output->getType(), core::kCimUint16Array);
  EXPECT_TRUE(output->isNull());
}

TEST(Arguments, AreStringsForAnUnknownMethod) {
  Arguments arguments("Dance", {"Steps=3"});
  EXPECT_EQ(arguments.in().get("Steps")->getType(), core::kCimString);
  EXPECT_EQ(arguments.out().iterator().first(), nullptr);
}

TEST(Arguments, HaveTheTypesOfAMethodInAnyCaseWhereTheCalleeTakesItSo) {
  using enum cli::MethodNames;
  for (const char* method : {"requeststatechange", "RequestStateChange"}) {
    EXPECT_EQ(
        Arguments(method, {"RequestedState=4"}, InAnyCase).in().get("RequestedState")->getType(),
        core::kCimUint16);
  }
  Arguments check("CHECKSOFTWAREIDENTITY", {"Target="}, InAnyCase);
  EXPECT_EQ(check.in().get("Target")->getType(), core::kCimReference);
  EXPECT_NE(check.out().get("InstallCharacteristics"), nullptr);
  EXPECT_EQ(Arguments("checksoftwareidentity", {"Target="}, Exact).in().get("Target")->getType(),
            core::kCimString);
  EXPECT_EQ(Arguments("Dance", {"Steps=3"}, InAnyCase).in().get("Steps")->getType(),
            core::kCimString);
}

TEST(Arguments, RefuseANameThatTheMethodDoesNotTake) {
  EXPECT_EQ(refusalOf("InstallFromURI", {"Uri=x"}),
            "method InstallFromURI takes no argument 'Uri'; it takes URI, Target, InstallOptions, "
            "InstallOptionsValues");
  EXPECT_THAT(refusalOf("CheckSoftwareIdentity", {"InstallCharacteristics=1"}),
              HasSubstr("it takes Source, Target, Collection"));
}

TEST(Arguments, RefuseATextWithoutAName) {
  EXPECT_EQ(refusalOf("InstallFromURI", {"URI"}), "'URI' is no argument; write NAME=VALUE");
  EXPECT_EQ(refusalOf("InstallFromURI", {"=3"}), "'=3' is no argument; write NAME=VALUE");
}

TEST(Arguments, RefuseANameThatComesTwice) {
  EXPECT_EQ(refusalOf("InstallFromURI", {"URI=a", "URI=b"}), "argument URI: is given twice");
}

TEST(Arguments, HaveTheTypesOfAJobsMethod) {
  Arguments arguments("RequestStateChange", {"RequestedState=4", "TimeoutPeriod="});
  EXPECT_EQ(arguments.in().get("RequestedState")->getType(), core::kCimUint16);
  EXPECT_EQ(arguments.in().get("TimeoutPeriod")->getType(), core::kCimDatetime);
  EXPECT_TRUE(arguments.in().get("TimeoutPeriod")->isNull());
  EXPECT_THAT(refusalOf("RequestStateChange", {"State=4"}),
              HasSubstr("it takes RequestedState, TimeoutPeriod"));
}

}  // namespace
