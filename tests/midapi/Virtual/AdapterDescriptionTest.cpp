#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "midapi/BoundedJson.h"
#include "midapi/Virtual/AdapterDescription.h"

namespace {

using ma::AdapterAddress;
using ma::AdapterDescription;
using ma::BootType;
using ma::DescriptionFault;
using ma::formatDescription;
using ma::InjectedFault;
using ma::InjectedWriteFault;
using ma::parseDescription;
using ma::withChange;
using nlohmann::json;
using testing::HasSubstr;
using testing::Optional;

json soundJson() {
  return json::parse(R"({
    "name": "Lab adapter", "pci": "0000:03:00", "vendorId": "1af4", "deviceId": "1041",
    "ports": [{"function": 1, "mac": "02:00:00:03:00:01", "bootType": 2},
              {"function": 0, "mac": "02:00:00:03:00:00"}]
  })");
}

std::string refusalOf(const std::string& text) {
  try {
    static_cast<void>(parseDescription(text));
  } catch (const DescriptionFault& fault) {
    return fault.what();
  }
  return "accepted";
}

// Sets the field at a JSON pointer; null removes it.
std::string refusalWith(const char* pointer, const json& value) {
  json changed = soundJson();
  const json::json_pointer at(pointer);
  if (value.is_null()) {
    changed.at(at.parent_pointer()).erase(at.back());
  } else {
    changed[at] = value;
  }
  return refusalOf(changed.dump());
}

TEST(AdapterDescription, FillsDefaultsForWhatIsNotSaid) {
  const AdapterDescription description = parseDescription(soundJson().dump());
  EXPECT_EQ(description.name, "Lab adapter");
  EXPECT_EQ(description.pci, (AdapterAddress{0, 3, 0}));
  EXPECT_EQ(description.vendor, 0x1AF4);
  EXPECT_EQ(description.device, 0x1041);
  EXPECT_EQ(description.writeRate, 0U);
  EXPECT_TRUE(description.isUpdatable);
  EXPECT_EQ(description.capabilityWord, 0U);
  EXPECT_FALSE(description.writeFault || description.hangAtPercent ||
               description.capabilityWordFault);
}

TEST(AdapterDescription, OrdersPortsByFunction) {
  const AdapterDescription description = parseDescription(soundJson().dump());
  ASSERT_EQ(description.ports.size(), 2U);
  EXPECT_EQ(description.ports[0].function, 0);
  EXPECT_EQ(description.ports[0].bootType, BootType::None);
  EXPECT_EQ(description.ports[1].mac, "02:00:00:03:00:01");
  EXPECT_EQ(description.ports[1].bootType, BootType::Iscsi);
  EXPECT_EQ(description.findPort(1), &description.ports[1]);
  EXPECT_EQ(description.findPort(2), nullptr);
}

TEST(AdapterDescription, ReadsWhatAPortsLinkIs) {
  json text = soundJson();
  text["ports"][0].update(json::parse(
      R"({"link": "down", "speed": 10000000000, "maxSpeed": 25000000000, "mtu": 9000})"));
  const AdapterDescription description = parseDescription(text.dump());
  const ma::PortDescription& silent = description.ports[0];
  EXPECT_EQ(silent.state, ma::PortState::Unknown);
  EXPECT_FALSE(silent.speed || silent.maxSpeed || silent.mtu);

  const std::string again = formatDescription(description);
  for (const AdapterDescription& told : {description, parseDescription(again)}) {
    const ma::PortDescription& port = told.ports[1];
    EXPECT_EQ(port.state, ma::PortState::Offline);
    EXPECT_THAT(port.speed, Optional(10'000'000'000U));
    EXPECT_THAT(port.maxSpeed, Optional(25'000'000'000U));
    EXPECT_THAT(port.mtu, Optional(9000U));
  }
}

TEST(AdapterDescription, ReadsFaults) {
  json text = soundJson();
  text["faults"] = json::parse(R"({"write": {"atPercent": 40, "code": 17, "text": "broken"},
                                   "hang": {"atPercent": 30},
                                   "capabilityWord": {"code": 18, "text": "locked"}})");
  const AdapterDescription description = parseDescription(text.dump());
  ASSERT_TRUE(description.writeFault && description.capabilityWordFault);
  EXPECT_EQ(description.writeFault->atPercent, 40U);
  EXPECT_EQ(description.writeFault->fault.code, 17U);
  EXPECT_EQ(description.writeFault->fault.text, "broken");
  EXPECT_THAT(description.hangAtPercent, Optional(30U));
  EXPECT_EQ(description.capabilityWordFault->code, 18U);
}

TEST(AdapterDescription, ReadsBackWhatItWrites) {
  AdapterDescription description = parseDescription(soundJson().dump());
  description.name = "A \"quoted\" name";
  description.writeRate = ~0ULL;
  description.isUpdatable = false;
  description.capabilityWord = 24;
  description.writeFault = InjectedWriteFault{100, {17, "broken"}};
  description.hangAtPercent = 0;
  description.capabilityWordFault = InjectedFault{18, ""};
  const std::string text = formatDescription(description);
  const AdapterDescription again = parseDescription(text);
  EXPECT_EQ(formatDescription(again), text);
  EXPECT_EQ(again.name, description.name);
  EXPECT_EQ(again.writeRate, ~0ULL);
  EXPECT_EQ(again.writeFault->atPercent, 100U);
  EXPECT_EQ(again.capabilityWordFault->text, "");
}

TEST(AdapterDescription, WritesNamesThatAreNoUtf8) {
  AdapterDescription description = parseDescription(soundJson().dump());
  description.name = "bad \xFF byte";
  EXPECT_THAT(parseDescription(formatDescription(description)).name, HasSubstr("bad "));
}

TEST(AdapterDescription, NamesTheFieldThatIsWrong) {
  EXPECT_EQ(refusalWith("/name", nullptr), "field name: is missing");
  EXPECT_EQ(refusalWith("/name", 5), "field name: must be a text");
  EXPECT_EQ(refusalWith("/pci", "0000:03:00.0"), "field pci: must be like \"0000:03:00\"");
  EXPECT_THAT(refusalWith("/vendorId", "0x1af4"), HasSubstr("field vendorId: must be four"));
  EXPECT_THAT(refusalWith("/deviceId", 1041), HasSubstr("field deviceId: must be a text"));
  EXPECT_THAT(refusalWith("/ports", json::array()), HasSubstr("field ports: must be a list of 1"));
  EXPECT_THAT(refusalWith("/ports", json(9, soundJson()["ports"][0])), HasSubstr("of 1 to 8"));
  EXPECT_EQ(refusalWith("/ports/0", "x"), "field ports[0]: must be an object");
  EXPECT_EQ(refusalWith("/ports/1/function", 8),
            "field ports[1].function: must be a whole number from 0 to 7");
  EXPECT_EQ(refusalWith("/ports/1/function", 1),
            "field ports[1].function: must differ from the other ports'");
  EXPECT_THAT(refusalWith("/ports/1/mac", "02:00:00:03:00:0"), HasSubstr("field ports[1].mac:"));
  EXPECT_THAT(refusalWith("/ports/1/mac", "02-00-00-03-00-00"), HasSubstr("must be like"));
  EXPECT_THAT(refusalWith("/ports/0/bootType", 5), HasSubstr("from 0 to 4"));
  EXPECT_EQ(refusalWith("/ports/0/link", "on"),
            "field ports[0].link: must be \"up\", \"down\" or \"disabled\"");
  EXPECT_THAT(refusalWith("/ports/0/speed", 0), HasSubstr("must be a whole number from 1"));
  EXPECT_THAT(refusalWith("/ports/0/maxSpeed", "10G"), HasSubstr("field ports[0].maxSpeed:"));
  EXPECT_THAT(refusalWith("/ports/0/mtu", 4294967296), HasSubstr("from 1 to 4294967295"));
  EXPECT_THAT(refusalWith("/writeRate", -1), HasSubstr("field writeRate: must be a whole number"));
  EXPECT_THAT(refusalWith("/writeRate", 1.5), HasSubstr("field writeRate: must be a whole number"));
  EXPECT_EQ(refusalWith("/updatable", 1), "field updatable: must be true or false");
  EXPECT_THAT(refusalWith("/capabilityWord", 4294967296), HasSubstr("field capabilityWord:"));
  EXPECT_EQ(refusalWith("/faults", 1), "field faults: must be an object");
  EXPECT_EQ(refusalWith("/faults", {{"write", {{"atPercent", 101}}}}),
            "field faults.write.atPercent: must be a whole number from 0 to 100");
  EXPECT_EQ(refusalWith("/faults", {{"write", {{"atPercent", 1}, {"text", ""}}}}),
            "field faults.write.code: is missing");
  EXPECT_THAT(refusalWith("/faults", {{"capabilityWord", {{"code", 0}}}}),
              HasSubstr("field faults.capabilityWord.code: must be a whole number from 1"));
  EXPECT_EQ(refusalWith("/faults", {{"hang", json::object()}}),
            "field faults.hang.atPercent: is missing");
}

TEST(AdapterDescription, RefusesWhatIsNoObject) {
  EXPECT_THAT(refusalOf(""), HasSubstr("the text is no JSON: "));
  EXPECT_THAT(refusalOf("{\"name\": \"x\","), HasSubstr("the text is no JSON: "));
  EXPECT_THAT(refusalOf("{\"writeRate\": 1e999}"), HasSubstr("the text is no JSON: "));
  EXPECT_EQ(refusalOf("[]"), "the text is no JSON object");
}

TEST(AdapterDescription, KeepsUnknownFieldsWhenItIsChanged) {
  json text = soundJson();
  text["comment"] = {{"by", "somebody"}};
  text["ports"][0]["label"] = "left";
  const json booted = json::parse(withChange(text.dump(), {{{1, BootType::Uefi}}, {}}));
  const json worded = json::parse(withChange(text.dump(), {{}, 8}));
  json expected = text;
  expected["ports"][0]["bootType"] = 4;
  EXPECT_EQ(booted, expected);
  expected = text;
  expected["capabilityWord"] = 8;
  EXPECT_EQ(worded, expected);
}

// Indented, each of the numbers takes a line of its own.
TEST(AdapterDescription, CanBeReadWhateverWasChangedInALargeOne) {
  json text = soundJson();
  text["notes"] = json(300'000, 0);
  const std::string changed = withChange(text.dump(), {{}, 8});
  EXPECT_EQ(parseDescription(changed).capabilityWord, 8U);
  EXPECT_EQ(json::parse(changed)["notes"], text["notes"]);
}

TEST(AdapterDescription, IsNotChangedIntoOneThatIsTooLarge) {
  json text = soundJson();
  text["notes"] = "";
  text["notes"] = std::string(ma::kMaxJsonSize - text.dump().size(), 'x');
  ASSERT_EQ(refusalOf(text.dump()), "accepted");
  EXPECT_THROW(static_cast<void>(withChange(text.dump(), {{}, 8})), DescriptionFault);
}

TEST(AdapterDescription, IsNotWrittenWithANameThatIsTooLarge) {
  AdapterDescription description = parseDescription(soundJson().dump());
  description.name = std::string(ma::kMaxJsonSize, 'x');
  EXPECT_THROW(static_cast<void>(formatDescription(description)), DescriptionFault);
}

TEST(AdapterDescription, StaysToTheLetterWhenItSaysTheSame) {
  const std::string text = soundJson().dump(5);
  EXPECT_EQ(withChange(text, {}), text);
  EXPECT_EQ(withChange(text, {{{1, BootType::Iscsi}, {0, BootType::None}}, 0}), text);
  EXPECT_EQ(withChange(text, {{{7, BootType::Pxe}}, {}}), text);
}

TEST(AdapterDescription, IsNotChangedWhenItIsNotValid) {
  EXPECT_THROW(static_cast<void>(withChange("{}", {{{0, BootType::Pxe}}, {}})), DescriptionFault);
  EXPECT_THROW(static_cast<void>(withChange("{}", {{}, 1})), DescriptionFault);
}

}  // namespace
