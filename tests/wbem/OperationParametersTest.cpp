#include <gmock/gmock.h>
#include <string>
#include <string_view>
#include <vector>

#include "tests/wbem/ServerFixture.h"
#include "wbem/OperationParameters.h"
#include "wbem/Status.h"

namespace {

using test::className;
using test::given;
using test::objectName;
using test::texts;
using testing::AllOf;
using testing::ElementsAre;
using testing::Optional;
using testing::Property;
using testing::StrEq;
using testing::Throws;
using wbem::OperationParameters;
using wbem::Status;
using wbem::StatusFault;

constexpr std::string_view kKnown[] = {"Value", "Other"};

// A request with one parameter "value".
cimxml::Request requestOf(cimxml::Value value) {
  cimxml::Request request;
  request.name = "GetThing";
  request.nameSpace = "root/test";
  request.parameters = {given("value", std::move(value))};
  return request;
}

auto Refuses(const std::string& text) {
  return Throws<StatusFault>(AllOf(Property(&StatusFault::status, Status::InvalidParameter),
                                   Property(&StatusFault::what, StrEq(text))));
}

TEST(OperationParameters, AreReadByTheirTypes) {
  const cimxml::Request boolean = requestOf("true");
  EXPECT_TRUE(OperationParameters(boolean, kKnown).getBoolean("Value", false));
  const cimxml::Request number = requestOf("12");
  EXPECT_THAT(OperationParameters(number, kKnown).getUint32("Value"), Optional(12));
  const cimxml::Request text = requestOf("a b");
  EXPECT_THAT(OperationParameters(text, kKnown).getString("Value"), Optional(StrEq("a b")));
  EXPECT_EQ(OperationParameters(text, kKnown).demandString("Value"), "a b");
  const cimxml::Request array = requestOf(texts({"a", "b"}));
  EXPECT_THAT(OperationParameters(array, kKnown).getStrings("Value"),
              Optional(ElementsAre("a", "b")));
  const cimxml::Request name = requestOf(className("C"));
  EXPECT_THAT(OperationParameters(name, kKnown).getClassName("Value"), Optional(StrEq("C")));
  EXPECT_EQ(OperationParameters(name, kKnown).demandClassName("Value"), "C");
  EXPECT_FALSE(OperationParameters(name, kKnown).demandObjectName("Value").isInstance);
  const cimxml::Request path = requestOf(objectName("C.K=1"));
  EXPECT_EQ(OperationParameters(path, kKnown).demandInstanceName("Value").keys.size(), 1U);
  const cimxml::Request instance = requestOf(cimxml::InstanceValue{objectName("C.K=1"), {}});
  EXPECT_EQ(OperationParameters(instance, kKnown).demandInstance("Value").name.className, "C");
}

TEST(OperationParameters, HaveDefaultsWhenTheyAreNullOrMissing) {
  for (const char* name : {"Value", "Other"}) {
    const cimxml::Request request = requestOf(std::monostate());
    const OperationParameters parameters(request, kKnown);
    EXPECT_FALSE(parameters.has(name));
    EXPECT_TRUE(parameters.getBoolean(name, true));
    EXPECT_EQ(parameters.getUint32(name), std::nullopt);
    EXPECT_EQ(parameters.getString(name), std::nullopt);
    EXPECT_EQ(parameters.getStrings(name), std::nullopt);
    EXPECT_EQ(parameters.getClassName(name), std::nullopt);
    const std::string text = "parameter " + std::string(name) + ": is required";
    EXPECT_THAT([&] { static_cast<void>(parameters.demandString(name)); }, Refuses(text));
    EXPECT_THAT([&] { static_cast<void>(parameters.demandClassName(name)); }, Refuses(text));
    EXPECT_THAT([&] { static_cast<void>(parameters.demandObjectName(name)); }, Refuses(text));
    EXPECT_THAT([&] { static_cast<void>(parameters.demandInstance(name)); }, Refuses(text));
  }
}

TEST(OperationParameters, OfAnotherTypeAreRefused) {
  const cimxml::Request text = requestOf("ten");
  const OperationParameters ofText(text, kKnown);
  EXPECT_THAT([&] { static_cast<void>(ofText.getBoolean("Value", false)); },
              Refuses("parameter Value: 'ten' is no truth value"));
  EXPECT_THAT([&] { static_cast<void>(ofText.getUint32("Value")); },
              Refuses("parameter Value: 'ten' is no uint32"));
  EXPECT_THAT([&] { static_cast<void>(ofText.getStrings("Value")); },
              Refuses("parameter Value: is no array of texts"));
  EXPECT_THAT([&] { static_cast<void>(ofText.getClassName("Value")); },
              Refuses("parameter Value: is no name of a class"));
  EXPECT_THAT([&] { static_cast<void>(ofText.demandObjectName("Value")); },
              Refuses("parameter Value: is no name of an object"));
  EXPECT_THAT([&] { static_cast<void>(ofText.demandInstance("Value")); },
              Refuses("parameter Value: is no instance with its name"));

  const cimxml::Request path = requestOf(objectName("C.K=1"));
  const OperationParameters ofPath(path, kKnown);
  EXPECT_THAT([&] { static_cast<void>(ofPath.getClassName("Value")); },
              Refuses("parameter Value: is no name of a class"));
  EXPECT_THAT([&] { static_cast<void>(ofPath.getString("Value")); },
              Refuses("parameter Value: is no text"));

  const cimxml::Request name = requestOf(className("C"));
  EXPECT_THAT(
      [&] { static_cast<void>(OperationParameters(name, kKnown).demandInstanceName("Value")); },
      Refuses("parameter Value: is no name of an instance"));

  const cimxml::Request unnamed = requestOf(cimxml::InstanceValue{className("C"), {}});
  EXPECT_THAT(
      [&] { static_cast<void>(OperationParameters(unnamed, kKnown).demandInstance("Value")); },
      Refuses("parameter Value: the instance has no name"));

  const cimxml::Request hole = requestOf(cimxml::StringArray{"a", std::nullopt});
  EXPECT_THAT([&] { static_cast<void>(OperationParameters(hole, kKnown).getStrings("Value")); },
              Refuses("parameter Value: an element is NULL"));
}

TEST(OperationParameters, NameObjectsOfTheRequestsNamespace) {
  cimxml::ObjectName object = objectName("C.K=1");
  object.nameSpace = "ROOT/Test";
  const cimxml::Request own = requestOf(object);
  EXPECT_EQ(OperationParameters(own, kKnown).demandObjectName("Value").className, "C");

  object.nameSpace = "root/other";
  const cimxml::Request foreign = requestOf(object);
  EXPECT_THAT(
      [&] { static_cast<void>(OperationParameters(foreign, kKnown).demandObjectName("Value")); },
      Refuses("parameter Value: the object is in another namespace than the request, root/other"));
}

TEST(OperationParameters, ThatAreUnknownOrComeTwiceAreRefused) {
  cimxml::Request request = requestOf("1");
  request.parameters.push_back(given("Surprise", "1"));
  EXPECT_THAT([&] { const OperationParameters parameters(request, kKnown); },
              Refuses("parameter Surprise: GetThing has none of that name"));
  request.parameters.back() = given("VALUE", "2");
  EXPECT_THAT([&] { const OperationParameters parameters(request, kKnown); },
              Refuses("parameter VALUE: is given twice"));
}

}  // namespace
