#include <cstdint>
#include <gmock/gmock.h>
#include <string>

#include "core/CimPropertyRef.h"
#include "tests/wbem/ServerFixture.h"
#include "wbem/InstanceNames.h"

namespace {

using test::objectName;
using wbem::isNamed;
using wbem::KeyMatcher;

class InstanceNames : public testing::Test {
 protected:
  InstanceNames() { test::ModelAgent().declareClasses(m_schema); }

  bool matches(core::CimInstance& instance, const cimxml::ObjectName& name) {
    return KeyMatcher(*m_schema.find(instance.getClassName()), name).matches(instance);
  }

  core::CimSchema m_schema;
  test::Device m_device{"a", 1};
  test::Port m_port{"p", 1};
  test::Link m_link{&m_device, &m_port};
  test::Profile m_profile{"profile"};
};

TEST_F(InstanceNames, AreComparedByTypedKeys) {
  for (const char* path :
       {"Test_Device.InstanceID=\"a\",Slot=1", "Test_Device.slot=0x1,instanceid=\"a\"",
        "test_device.InstanceID=\"a\",Slot=\"1\"", "Test_Device.InstanceID=\"a\",Slot=+01"}) {
    EXPECT_TRUE(matches(m_device, objectName(path))) << path;
    EXPECT_TRUE(isNamed(m_device, objectName(path))) << path;
  }
}

TEST_F(InstanceNames, DifferByAnyKey) {
  for (const char* path : {
           "Test_Device.InstanceID=\"a\",Slot=2",
           "Test_Device.InstanceID=\"A\",Slot=1",
           "Test_Device.InstanceID=\"a\"",
           "Test_Device.InstanceID=\"a\",Slot=1,Name=\"a\"",
           "Test_Device.InstanceID=\"a\",Place=1",
           "Test_Device.InstanceID=\"a\",Slot=one",
           "Test_Device.InstanceID=\"a\",Slot=65537",
       }) {
    EXPECT_FALSE(matches(m_device, objectName(path))) << path;
    EXPECT_FALSE(isNamed(m_device, objectName(path))) << path;
  }
  EXPECT_FALSE(isNamed(m_device, objectName("Test_Port.InstanceID=\"a\",Slot=1")));
  EXPECT_FALSE(isNamed(m_device, test::className("Test_Device")));
}

// Expects that a key of that type is known by the first text, and by no other.
template <class Property, class Value>
void expectKnownBy(const Value& value, const std::string& text, const std::string& other) {
  test::Device device("a", 1);
  Property key("Key", &device);
  key.setKey();
  key.setValue(value);
  const std::string others = R"(Test_Device.InstanceID="a",Slot=1,Key=)";
  EXPECT_TRUE(isNamed(device, objectName(others + text))) << text;
  EXPECT_FALSE(isNamed(device, objectName(others + other))) << other;
}

TEST_F(InstanceNames, MayHaveKeysOfEachType) {
  expectKnownBy<core::CimPropertyUint8>(std::uint8_t{200}, "200", "201");
  expectKnownBy<core::CimPropertySint8>(std::int8_t{-5}, "-5", "5");
  expectKnownBy<core::CimPropertyUint16>(std::uint16_t{50'000}, "50000", "50001");
  expectKnownBy<core::CimPropertyUint32>(4'000'000'000U, "4000000000", "4000000001");
  expectKnownBy<core::CimPropertyUint64>(std::uint64_t{1} << 63, "9223372036854775808", "0");
  expectKnownBy<core::CimPropertyBoolean>(std::uint8_t{1}, "TRUE", "FALSE");
  expectKnownBy<core::CimPropertyString>(std::string("x"), R"("x")", R"("X")");
}

TEST_F(InstanceNames, MayLeaveTheOnlyKeyWithoutAName) {
  cimxml::ObjectName name = objectName("Test_RegisteredProfile.InstanceID=\"profile\"");
  name.keys.front().name.clear();
  EXPECT_TRUE(matches(m_profile, name));
  EXPECT_TRUE(isNamed(m_profile, name));

  cimxml::ObjectName two = objectName("Test_Device.InstanceID=\"a\",Slot=1");
  two.keys.front().name.clear();
  EXPECT_FALSE(matches(m_device, two));
}

TEST_F(InstanceNames, CompareReferencesByTheNamesOfTheirTargets) {
  cimxml::ObjectName name = objectName(m_link.getPath());
  EXPECT_TRUE(matches(m_link, name));
  EXPECT_TRUE(isNamed(m_link, name));

  // The same as a client writes it that does not know the class.
  for (cimxml::KeyBinding& key : name.keys) {
    key.text = cimxml::toObjectPath(key.reference.front());
    key.kind = cimxml::KeyBinding::Kind::String;
    key.reference.clear();
  }
  EXPECT_TRUE(matches(m_link, name));

  name.keys.front().text = "Test_Device.InstanceID=\"b\",Slot=1";
  EXPECT_FALSE(matches(m_link, name));
  name.keys.front().text = "nonsense";
  EXPECT_FALSE(matches(m_link, name));
}

TEST_F(InstanceNames, CompareReferencesThatHoldATextAlone) {
  core::CimPropertyRef reference("Peer", nullptr);
  const cimxml::ObjectName name = objectName("Test_Device.InstanceID=\"a\",Slot=1");
  EXPECT_FALSE(wbem::leadsTo(reference, name));
  reference.setText("root/test:TEST_Device.Slot=1,InstanceID=\"a\"");
  EXPECT_TRUE(wbem::leadsTo(reference, name));
  reference.setText("Test_Device.Slot=2,InstanceID=\"a\"");
  EXPECT_FALSE(wbem::leadsTo(reference, name));
  reference.setText("nowhere");
  EXPECT_FALSE(wbem::leadsTo(reference, name));
}

TEST_F(InstanceNames, NeverMatchAKeyWithoutAValue) {
  m_device.Slot.setNull();
  EXPECT_FALSE(matches(m_device, objectName("Test_Device.InstanceID=\"a\",Slot=0")));
  EXPECT_FALSE(isNamed(m_device, objectName("Test_Device.InstanceID=\"a\",Slot=0")));
}

TEST_F(InstanceNames, AreSpelledAndOrderedAsDeclared) {
  cimxml::ObjectName name = objectName("TEST_device.SLOT=1,instanceid=\"a\"");
  name.host = "server1";
  name.nameSpace = "root/test";
  EXPECT_EQ(cimxml::toObjectPath(wbem::toDeclaredName(m_schema, name)),
            "Test_Device.InstanceID=\"a\",Slot=1");

  const cimxml::ObjectName link = objectName(
      "test_link.dependent=\"test_port.slot=1,instanceid=\\\"p\\\"\","
      "antecedent=\"test_device.slot=1,instanceid=\\\"a\\\"\"");
  EXPECT_EQ(cimxml::toObjectPath(wbem::toDeclaredName(m_schema, link)), m_link.getPath());
}

TEST_F(InstanceNames, OfUnknownClassesAndKeysStayAsTheyAre) {
  for (const char* path :
       {"Other.Slot=1,InstanceID=\"a\"", "Test_Device.Place=1,InstanceID=\"a\""}) {
    EXPECT_EQ(cimxml::toObjectPath(wbem::toDeclaredName(m_schema, objectName(path))), path);
  }
}

TEST_F(InstanceNames, AreForeignWhenTheyNameAnotherNamespace) {
  const std::vector<std::string> own{"root/test", "root/interop"};
  cimxml::ObjectName name = objectName(m_link.getPath());
  EXPECT_EQ(wbem::findForeignName(name, own), nullptr);
  name.nameSpace = "ROOT/interop";
  EXPECT_EQ(wbem::findForeignName(name, own), nullptr);
  name.keys.back().reference.front().nameSpace = "root/other";
  ASSERT_NE(wbem::findForeignName(name, own), nullptr);
  EXPECT_EQ(wbem::findForeignName(name, own)->nameSpace, "root/other");
}

}  // namespace
