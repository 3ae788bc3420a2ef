#include <gmock/gmock.h>
#include <string>

#include "midapi/DescriptionFault.h"
#include "midapi/FieldReader.h"

namespace {

using ma::DescriptionFault;
using ma::FieldReader;
using ma::Json;

template <class Read>
std::string refusalOf(Read read) {
  try {
    static_cast<void>(read());
  } catch (const DescriptionFault& fault) {
    return fault.what();
  }
  return "accepted";
}

class FieldReaderTest : public testing::Test {
 protected:
  const Json m_json =
      Json::parse(R"({"text": "x", "number": 7, "id": "1AF4", "object": {"inner": 5},
                      "digest": "af63dc4c8601ec8c", "short": "af63dc4c8601ec8", "long": "0xaf63dc4c8601ec"})");
  const FieldReader m_fields{m_json, "outer."};
};

TEST_F(FieldReaderTest, ReadsFieldsOfEachKind) {
  EXPECT_EQ(m_fields.text("text"), "x");
  EXPECT_EQ(m_fields.number("number", 0, 7), 7U);
  EXPECT_EQ(m_fields.pciId("id"), 0x1AF4);
  EXPECT_EQ(m_fields.digest("digest"), 0xAF63DC4C8601EC8CU);
  EXPECT_EQ(m_fields.object("object")->number("inner", 5, 5), 5U);
}

TEST_F(FieldReaderTest, TakesNothingForFieldsThatMayBeMissing) {
  EXPECT_EQ(m_fields.find("none"), nullptr);
  EXPECT_EQ(m_fields.numberOr("none", 9, 3), 3U);
  EXPECT_FALSE(m_fields.object("none").has_value());
}

TEST_F(FieldReaderTest, SaysWhereWhatIsWrong) {
  EXPECT_EQ(refusalOf([&] { return m_fields.text("none"); }), "field outer.none: is missing");
  EXPECT_EQ(refusalOf([&] { return m_fields.text("number"); }),
            "field outer.number: must be a text");
  EXPECT_EQ(refusalOf([&] { return m_fields.number("number", 8, 9); }),
            "field outer.number: must be a whole number from 8 to 9");
  EXPECT_EQ(refusalOf([&] { return m_fields.pciId("text"); }),
            "field outer.text: must be four hexadecimal digits, like \"1af4\"");
  for (const char* field : {"text", "short", "long"}) {
    EXPECT_EQ(refusalOf([&] { return m_fields.digest(field); }),
              "field outer." + std::string(field) + ": must be sixteen hexadecimal digits");
  }
  EXPECT_EQ(refusalOf([&] { return m_fields.object("number")->nameOf(""); }),
            "field outer.number: must be an object");
  EXPECT_EQ(refusalOf([&] { return m_fields.object("object")->text("inner"); }),
            "field outer.object.inner: must be a text");
}

}  // namespace
