#include <gmock/gmock.h>
#include <memory>
#include <string>

#include "core/CimPropertyRef.h"
#include "tests/wbem/ServerFixture.h"
#include "wbem/PropertyValues.h"

namespace {

using test::objectName;
using test::texts;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Property;
using testing::StartsWith;
using testing::Throws;
using wbem::Status;
using wbem::StatusFault;

class PropertyValues : public testing::Test {
 protected:
  PropertyValues() { m_broker.addAgent(&m_agent); }

  std::unique_ptr<core::CimProperty> make(core::CimType type, const cimxml::Value& value) {
    const wbem::Namespaces namespaces(m_broker, "root/test");
    return wbem::makeProperty({"Thing", Status::TypeMismatch, namespaces}, "Value", type, value);
  }

  template <class Expected>
  auto valueOf(core::CimType type, const cimxml::Value& value) {
    m_made = make(type, value);
    EXPECT_EQ(m_made->getName(), "Value");
    EXPECT_EQ(m_made->getType(), type);
    EXPECT_FALSE(m_made->isNull());
    return dynamic_cast<Expected&>(*m_made).getValue();
  }

  void expectRefusal(core::CimType type, const cimxml::Value& value, const std::string& reason) {
    EXPECT_THAT([&] { make(type, value); },
                Throws<StatusFault>(
                    AllOf(Property(&StatusFault::status, Status::TypeMismatch),
                          Property(&StatusFault::what, StartsWith("Value of Thing: " + reason)))));
  }

  core::CimBroker m_broker;
  test::ModelAgent m_agent;
  std::unique_ptr<core::CimProperty> m_made;
};

TEST_F(PropertyValues, AreOfTheirTypes) {
  EXPECT_EQ(valueOf<core::CimPropertyUint8>(core::kCimUint8, "255"), 255);
  EXPECT_EQ(valueOf<core::CimPropertySint8>(core::kCimSint8, "-128"), -128);
  EXPECT_EQ(valueOf<core::CimPropertyUint16>(core::kCimUint16, "65535"), 65535);
  EXPECT_EQ(valueOf<core::CimPropertyUint32>(core::kCimUint32, "4294967295"), 4294967295U);
  EXPECT_EQ(valueOf<core::CimPropertyUint64>(core::kCimUint64, "18446744073709551615"),
            18446744073709551615U);
  EXPECT_EQ(valueOf<core::CimPropertyBoolean>(core::kCimBoolean, "TRUE"), 1);
  EXPECT_EQ(valueOf<core::CimPropertyBoolean>(core::kCimBoolean, "false"), 0);
  EXPECT_EQ(valueOf<core::CimPropertyString>(core::kCimString, " a\n"), " a\n");
  EXPECT_EQ(valueOf<core::CimPropertyString>(core::kCimString, ""), "");
  EXPECT_THAT(valueOf<core::CimPropertyUint16_arr>(core::kCimUint16Array, texts({"3", "5"})),
              ElementsAre(3, 5));
  EXPECT_THAT(valueOf<core::CimPropertyUint16_arr>(core::kCimUint16Array, texts({})), IsEmpty());
  EXPECT_THAT(valueOf<core::CimPropertyString_arr>(core::kCimStringArray, texts({"", "b"})),
              ElementsAre("", "b"));
  const utils::Datetime interval =
      valueOf<core::CimPropertyDatetime>(core::kCimDatetime, "00000000000001.000000:000");
  EXPECT_EQ(interval.value, 1'000'000U);
  EXPECT_FALSE(interval.isTimestamp);
}

TEST_F(PropertyValues, AreNullOfEachType) {
  for (const core::CimType type :
       {core::kCimUint8, core::kCimSint8, core::kCimUint16, core::kCimUint16Array, core::kCimUint32,
        core::kCimUint64, core::kCimString, core::kCimStringArray, core::kCimBoolean,
        core::kCimDatetime, core::kCimReference}) {
    const auto made = make(type, cimxml::Value());
    EXPECT_TRUE(made->isNull()) << type;
    EXPECT_EQ(made->getType(), type);
  }
}

TEST_F(PropertyValues, OfAnotherFormAreRefused) {
  expectRefusal(core::kCimUint8, "256", "'256' is no whole number from 0 to 255");
  expectRefusal(core::kCimSint8, "128", "'128' is no whole number from -128 to 127");
  expectRefusal(core::kCimUint16, "many", "'many' is no whole number from 0 to 65535");
  expectRefusal(core::kCimUint32, "-1", "'-1' is no whole number");
  expectRefusal(core::kCimUint64, "18446744073709551616", "'18446744073709551616' is no whole");
  expectRefusal(core::kCimBoolean, "1", "'1' is neither TRUE nor FALSE");
  expectRefusal(core::kCimDatetime, "2023**14221320.123000+000",
                "'2023**14221320.123000+000' is no datetime");
  expectRefusal(core::kCimUint16, texts({"1"}), "is to be one value");
  expectRefusal(core::kCimString, objectName("A.B=1"), "is to be one value");
  expectRefusal(core::kCimUint16Array, "1", "is to be an array");
  expectRefusal(core::kCimUint16Array, texts({"1", "x"}), "'x' is no whole number");
  expectRefusal(core::kCimStringArray, cimxml::StringArray{"a", std::nullopt},
                "an element is NULL");
  expectRefusal(core::kCimReference, texts({"A.B=1"}), "is to be one value");
  expectRefusal(core::kCimReference, "a b", "'a b' is no object path");
}

TEST_F(PropertyValues, OfReferencesAreObjectPathsAsAgentsWriteThem) {
  const auto reference = [this](const cimxml::Value& value) {
    m_made = make(core::kCimReference, value);
    EXPECT_EQ(dynamic_cast<core::CimPropertyRef&>(*m_made).getTarget(), nullptr);
    return m_made->toString();
  };
  cimxml::ObjectName name = objectName("TEST_DEVICE.slot=1,InstanceID=\"a\"");
  name.host = "elsewhere";
  name.nameSpace = "ROOT/TEST";
  EXPECT_EQ(reference(name), "Test_Device.InstanceID=\"a\",Slot=1");
  EXPECT_EQ(reference("root/test:Test_Device.InstanceID=\"a\",Slot=1"),
            "Test_Device.InstanceID=\"a\",Slot=1");
  EXPECT_EQ(reference(test::className("test_device")), "Test_Device");

  name.nameSpace = "root/other";
  EXPECT_THAT(
      [&] { make(core::kCimReference, name); },
      Throws<StatusFault>(AllOf(
          Property(&StatusFault::status, Status::InvalidParameter),
          Property(&StatusFault::what, HasSubstr("there is no namespace 'root/other' here")))));
}

TEST_F(PropertyValues, AreRefusedWhenTheMessageSaysAnotherType) {
  const wbem::Namespaces namespaces(m_broker, "root/test");
  const wbem::ValueContext context{"Thing", Status::InvalidParameter, namespaces};
  EXPECT_NO_THROW(wbem::demandType(context, "Value", core::kCimUint16Array, "UINT16"));
  EXPECT_NO_THROW(wbem::demandType(context, "Value", core::kCimUint16Array, ""));
  EXPECT_NO_THROW(wbem::demandType(context, "Value", core::kCimReference, "reference"));
  EXPECT_THAT(
      [&] { wbem::demandType(context, "Value", core::kCimUint16, "string"); },
      Throws<StatusFault>(AllOf(
          Property(&StatusFault::status, Status::InvalidParameter),
          Property(&StatusFault::what, testing::StrEq("Value of Thing: is a uint16, no string")))));
}

}  // namespace
