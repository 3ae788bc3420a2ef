#include <gmock/gmock.h>

#include "client/HostValues.h"
#include "client/Snapshot.h"
#include "core/CimPropertyTypes.h"
#include "tests/client/ValuePrinter.h"

namespace {

using cimxml::KeyBinding;
using cimxml::ObjectName;
using client::PropertySnapshot;
using client::Value;
using testing::ElementsAre;
using testing::Field;
using testing::SizeIs;

Value valueOf(const std::string& type, const cimxml::Value& value) {
  return client::snapshotOf("P", type, value).value;
}

ObjectName name(std::vector<KeyBinding> keys) {
  ObjectName result;
  result.className = "thing";
  result.isInstance = true;
  result.keys = std::move(keys);
  return result;
}

KeyBinding key(const std::string& keyName, const std::string& text) {
  return {keyName, KeyBinding::Kind::String, text, {}};
}

TEST(HostValue, HasTheTypeThatTheHostNames) {
  EXPECT_EQ(valueOf("uint64", "18446744073709551615"), Value(18446744073709551615U));
  EXPECT_EQ(valueOf("sint8", "-128"), Value(-128));
  EXPECT_EQ(valueOf("real32", "0.5"), Value(0.5));
  EXPECT_EQ(valueOf("boolean", "TRUE"), Value(true));
  EXPECT_EQ(valueOf("boolean", "false"), Value(false));
  EXPECT_EQ(valueOf("string", "12"), Value("12"));
  EXPECT_EQ(valueOf("", "12"), Value("12"));
  EXPECT_EQ(valueOf("uint16", cimxml::StringArray{"2", std::nullopt}),
            Value::array({Value(2), Value()}));
  EXPECT_EQ(valueOf("uint16", std::monostate()), Value());
}

TEST(HostValue, StaysATextWhereItIsNoneOfItsType) {
  EXPECT_EQ(valueOf("uint16", "12x"), Value("12x"));
  EXPECT_EQ(valueOf("uint16", ""), Value(""));
  EXPECT_EQ(valueOf("boolean", "perhaps"), Value("perhaps"));
}

TEST(HostValue, IsAPathWhereItIsAReference) {
  const PropertySnapshot property =
      client::snapshotOf("P", "reference", name({key("Id", "a \"b\"")}));
  EXPECT_EQ(property.kind, PropertySnapshot::Kind::Reference);
  EXPECT_EQ(property.value, Value("thing.Id=\"a \\\"b\\\"\""));
}

TEST(HostValue, IsOfItsKindWhereItIsAText) {
  const PropertySnapshot date = client::snapshotOf("P", "datetime", "00000000000042.000000:000");
  EXPECT_EQ(date.kind, PropertySnapshot::Kind::Datetime);
  EXPECT_EQ(date.value, Value("00000000000042.000000:000"));
  EXPECT_TRUE(client::snapshotOf("P", "datetime", std::monostate()).value.isNull());
  const PropertySnapshot array = client::snapshotOf("P", "datetime", cimxml::StringArray{"a"});
  EXPECT_EQ(array.kind, PropertySnapshot::Kind::Value);
  EXPECT_EQ(array.value, Value::array({Value("a")}));
}

TEST(HostInstance, HasTheNameThatStandsBesideIt) {
  cimxml::InstanceValue instance;
  instance.name = name({key("Id", "a")});
  instance.properties = {{"Id", "string", false, "a"}};
  const client::InstanceSnapshot snapshot = client::snapshotOf(instance);
  EXPECT_EQ(snapshot.className, "thing");
  EXPECT_EQ(snapshot.path, "thing.Id=\"a\"");
  EXPECT_EQ(snapshot.value<std::string>("Id"), "a");
}

TEST(HostInstance, HasThePathThatTheHostWrites) {
  cimxml::InstanceValue instance;
  instance.name.className = "Thing";
  instance.properties = {{"First", "string", false, "1"}, {"Second", "string", false, "2"}};
  EXPECT_EQ(client::snapshotOf(instance, name({key("SECOND", "2"), key("first", "1")})).path,
            "Thing.First=\"1\",Second=\"2\"");
}

TEST(HostOutputs, AreThoseThatTheMethodHasThenOthers) {
  core::CimPropertyUint16_arr characteristics("InstallCharacteristics", nullptr);
  core::CimPropertyString missing("Missing", nullptr);
  core::CimPropertyList declared;
  declared.add(&characteristics);
  declared.add(&missing);
  const std::vector<cimxml::Parameter> outputs = {
      {"Extra", "string", "x"},
      {"Job", "reference", name({key("Id", "1")})},
      {"installcharacteristics", "uint16", cimxml::StringArray{"7"}}};
  EXPECT_THAT(client::outputsOf(outputs, declared),
              ElementsAre(Field(&PropertySnapshot::name, "InstallCharacteristics"),
                          Field(&PropertySnapshot::name, "Missing"),
                          Field(&PropertySnapshot::name, "Extra")));
  EXPECT_EQ(client::outputsOf(outputs, declared)[0].value, Value::array({Value(7)}));
  EXPECT_TRUE(client::outputsOf(outputs, declared)[1].value.isNull());
  EXPECT_EQ(client::jobPathOf(outputs), "thing.Id=\"1\"");
  EXPECT_EQ(client::jobPathOf({{"Job", "reference", std::monostate()}}), "");
  EXPECT_EQ(client::jobPathOf({}), "");
}

}  // namespace
