#include <gmock/gmock.h>
#include <string>

#include "midapi/BoundedJson.h"
#include "midapi/DescriptionFault.h"

namespace {

using ma::DescriptionFault;
using ma::formatJson;
using ma::Json;
using ma::kMaxJsonMembers;
using ma::kMaxJsonNesting;
using ma::kMaxJsonSize;
using ma::parseJsonObject;
using testing::HasSubstr;

std::string refusalOf(const std::string& text) {
  try {
    static_cast<void>(parseJsonObject(text));
  } catch (const DescriptionFault& fault) {
    return fault.what();
  }
  return "accepted";
}

// An object with lists in each other: so many levels in all.
std::string nested(std::size_t levels) {
  return "{\"a\":" + std::string(levels - 1, '[') + std::string(levels - 1, ']') + "}";
}

std::string withMembers(std::size_t count) {
  std::string text = "{\"0\":{}";
  for (std::size_t member = 1; member < count; ++member) {
    text += ",\"" + std::to_string(member) + "\":0";
  }
  return text + "}";
}

TEST(BoundedJson, ReadsObjectsAlone) {
  EXPECT_EQ(refusalOf("{}"), "accepted");
  EXPECT_EQ(refusalOf("[]"), "the text is no JSON object");
  EXPECT_THAT(refusalOf("{"), HasSubstr("the text is no JSON: "));
}

TEST(BoundedJson, RefusesATextThatIsTooLarge) {
  EXPECT_EQ(refusalOf("{}" + std::string(kMaxJsonSize - 2, ' ')), "accepted");
  EXPECT_EQ(refusalOf("{}" + std::string(kMaxJsonSize - 1, ' ')),
            "the text has 1048577 bytes, more than 1048576");
}

TEST(BoundedJson, RefusesATextThatIsNestedTooDeeply) {
  EXPECT_EQ(refusalOf(nested(kMaxJsonNesting)), "accepted");
  EXPECT_EQ(refusalOf(nested(kMaxJsonNesting + 1)), "the text is nested more than 32 levels deep");
  EXPECT_THAT(refusalOf(nested(30'000)), HasSubstr("levels deep"));
}

TEST(BoundedJson, RefusesAnObjectWithTooManyMembers) {
  EXPECT_EQ(refusalOf(withMembers(kMaxJsonMembers)), "accepted");
  EXPECT_EQ(refusalOf(withMembers(kMaxJsonMembers + 1)),
            "an object in the text has more than 1000 members");
}

TEST(BoundedJson, CountsTheMembersOfEachObjectByThemselves) {
  const std::string object = withMembers(kMaxJsonMembers);
  EXPECT_EQ(refusalOf("{\"a\":" + object + ",\"b\":" + object + "}"), "accepted");
}

TEST(BoundedJson, IndentsWhatFitsThen) {
  EXPECT_EQ(formatJson({{"b", 1}, {"a", 2}}), "{\n  \"b\": 1,\n  \"a\": 2\n}\n");
}

TEST(BoundedJson, FillsTheLastByteWithWhiteSpace) {
  const std::size_t without = formatJson({{"text", ""}}).size();
  const std::string text = formatJson({{"text", std::string(kMaxJsonSize - without, 'x')}});
  EXPECT_EQ(text.size(), kMaxJsonSize);
  EXPECT_TRUE(text.starts_with("{\n  "));
}

TEST(BoundedJson, LeavesWhiteSpaceOutWhereItWouldNotFit) {
  const Json large = {{"list", Json(300'000, 0)}};
  const std::string text = formatJson(large);
  EXPECT_LE(text.size(), kMaxJsonSize);
  EXPECT_EQ(parseJsonObject(text), large);
}

TEST(BoundedJson, WritesNothingThatItCouldNotRead) {
  EXPECT_THROW(static_cast<void>(formatJson({{"text", std::string(kMaxJsonSize, 'x')}})),
               DescriptionFault);
}

TEST(EmptiedJson, IsEmptyAfterItsScope) {
  ma::Json json = ma::parseJsonObject(R"({"a": {"b": [1, {"c": "text"}]}, "d": 2})");
  {
    const ma::EmptiedJson emptied(json);
    EXPECT_EQ(json.size(), 2U);
  }
  EXPECT_TRUE(json.is_object());
  EXPECT_EQ(json.size(), 0U);
}

}  // namespace
