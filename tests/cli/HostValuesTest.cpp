#include <gmock/gmock.h>

#include "cli/HostValues.h"
#include "cli/Output.h"
#include "core/CimPropertyTypes.h"

namespace {

using cimxml::KeyBinding;
using cimxml::ObjectName;
using cli::Json;
using cli::PropertySnapshot;
using testing::ElementsAre;
using testing::Field;
using testing::SizeIs;

Json valueOf(const std::string& type, const cimxml::Value& value) {
  return cli::snapshotOf("P", type, value).value;
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
  EXPECT_EQ(valueOf("uint64", "18446744073709551615"), Json(18446744073709551615U));
  EXPECT_EQ(valueOf("sint8", "-128"), Json(-128));
  EXPECT_EQ(valueOf("real32", "0.5"), Json(0.5));
  EXPECT_EQ(valueOf("boolean", "TRUE"), Json(true));
  EXPECT_EQ(valueOf("boolean", "false"), Json(false));
  EXPECT_EQ(valueOf("string", "12"), Json("12"));
  EXPECT_EQ(valueOf("", "12"), Json("12"));
  EXPECT_EQ(valueOf("uint16", cimxml::StringArray{"2", std::nullopt}), Json({2, nullptr}));
  EXPECT_EQ(valueOf("uint16", std::monostate()), Json());
}

TEST(HostValue, StaysATextWhereItIsNoneOfItsType) {
  EXPECT_EQ(valueOf("uint16", "12x"), Json("12x"));
  EXPECT_EQ(valueOf("uint16", ""), Json(""));
  EXPECT_EQ(valueOf("boolean", "perhaps"), Json("perhaps"));
}

TEST(HostValue, IsAPathWhereItIsAReference) {
  const PropertySnapshot property = cli::snapshotOf("P", "reference", name({key("Id", "a \"b\"")}));
  EXPECT_EQ(property.kind, PropertySnapshot::Kind::Reference);
  EXPECT_EQ(cli::toText(property), "thing.Id=\"a \\\"b\\\"\"");
}

TEST(HostValue, IsPrintedByItsKind) {
  EXPECT_EQ(cli::toText(cli::snapshotOf("P", "datetime", "00000000000042.000000:000")),
            "00000000000042.000000:000");
  EXPECT_EQ(cli::toText(cli::snapshotOf("P", "datetime", std::monostate())), "NULL");
  EXPECT_EQ(cli::toText(cli::snapshotOf("P", "datetime", cimxml::StringArray{"a"})), "{\"a\"}");
}

TEST(HostInstance, HasTheNameThatStandsBesideIt) {
  cimxml::InstanceValue instance;
  instance.name = name({key("Id", "a")});
  instance.properties = {{"Id", "string", false, "a"}};
  const cli::InstanceSnapshot snapshot = cli::snapshotOf(instance);
  EXPECT_EQ(snapshot.className, "thing");
  EXPECT_EQ(snapshot.path, "thing.Id=\"a\"");
  EXPECT_EQ(snapshot.value<std::string>("Id"), "a");
}

TEST(HostInstance, HasThePathThatTheHostWrites) {
  cimxml::InstanceValue instance;
  instance.name.className = "Thing";
  instance.properties = {{"First", "string", false, "1"}, {"Second", "string", false, "2"}};
  EXPECT_EQ(cli::snapshotOf(instance, name({key("SECOND", "2"), key("first", "1")})).path,
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
  EXPECT_THAT(cli::outputsOf(outputs, declared),
              ElementsAre(Field(&PropertySnapshot::name, "InstallCharacteristics"),
                          Field(&PropertySnapshot::name, "Missing"),
                          Field(&PropertySnapshot::name, "Extra")));
  EXPECT_EQ(cli::outputsOf(outputs, declared)[0].value, Json::array({7}));
  EXPECT_TRUE(cli::outputsOf(outputs, declared)[1].value.is_null());
  EXPECT_EQ(cli::jobPathOf(outputs), "thing.Id=\"1\"");
  EXPECT_EQ(cli::jobPathOf({{"Job", "reference", std::monostate()}}), "");
  EXPECT_EQ(cli::jobPathOf({}), "");
}

}  // namespace
