#include <gmock/gmock.h>
#include <sstream>

#include "cli/Output.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"

namespace {

using cli::Json;
using cli::NullProperties;

// One property of every type.
class EveryType : public core::CimInstance {
 public:
  [[nodiscard]] std::string getClassName() const override { return "Every_Type"; }

  core::CimPropertyString Id{"Id", this};
  core::CimPropertyUint8 Small{"Small", this};
  core::CimPropertySint8 Signed{"Signed", this};
  core::CimPropertyUint16 Number{"Number", this};
  core::CimPropertyUint16_arr Numbers{"Numbers", this};
  core::CimPropertyUint32 Long{"Long", this};
  core::CimPropertyUint64 Longest{"Longest", this};
  core::CimPropertyString_arr Texts{"Texts", this};
  core::CimPropertyBoolean Truth{"Truth", this};
  core::CimPropertyDatetime Time{"Time", this};
  core::CimPropertyRef Reference{"Reference", this};
};

class OutputTest : public testing::Test {
 protected:
  void fill() {
    m_instance.Id.setKey();
    m_instance.Id.setValue("one");
    m_instance.Small.setValue(255);
    m_instance.Signed.setValue(-128);
    m_instance.Number.setValue(65535);
    m_instance.Numbers.setValue({2, 32768});
    m_instance.Long.setValue(4294967295U);
    m_instance.Longest.setValue(18446744073709551615U);
    m_instance.Texts.setValue({"a", "b \"c\""});
    m_instance.Truth.setValue(1);
    m_instance.Time.setValue(utils::Datetime(300'000'000));
    m_instance.Reference.setText("C.K=\"v\"");
  }

  std::string textOf(const std::string& name) { return cli::toText(*m_instance.getProperty(name)); }

  std::string printed(NullProperties nulls) {
    std::ostringstream out;
    cli::printProperties(out, cli::snapshotOf(m_instance.getProperties()), nulls);
    return out.str();
  }

  EveryType m_instance;
};

TEST_F(OutputTest, PrintsEveryTypeAsText) {
  fill();
  EXPECT_EQ(textOf("Id"), "\"one\"");
  EXPECT_EQ(textOf("Small"), "255");
  EXPECT_EQ(textOf("Signed"), "-128");
  EXPECT_EQ(textOf("Number"), "65535");
  EXPECT_EQ(textOf("Numbers"), "{2, 32768}");
  EXPECT_EQ(textOf("Long"), "4294967295");
  EXPECT_EQ(textOf("Longest"), "18446744073709551615");
  EXPECT_EQ(textOf("Texts"), "{\"a\", \"b \\\"c\\\"\"}");
  EXPECT_EQ(textOf("Truth"), "true");
  EXPECT_EQ(textOf("Time"), "00000000000500.000000:000");
  EXPECT_EQ(textOf("Reference"), "C.K=\"v\"");
}

TEST_F(OutputTest, PrintsEveryTypeAsJson) {
  fill();
  const Json expected = Json::parse(R"({
    "Id": "one", "Small": 255, "Signed": -128, "Number": 65535, "Numbers": [2, 32768],
    "Long": 4294967295, "Longest": 18446744073709551615, "Texts": ["a", "b \"c\""],
    "Truth": true, "Time": "00000000000500.000000:000", "Reference": "C.K=\"v\""})");
  EXPECT_EQ(
      cli::propertiesToJson(cli::snapshotOf(m_instance.getProperties()), NullProperties::Left),
      expected);
}

TEST_F(OutputTest, PrintsNullOfEveryTypeOnlyWhenAsked) {
  EXPECT_EQ(
      cli::propertiesToJson(cli::snapshotOf(m_instance.getProperties()), NullProperties::Left),
      Json::object());
  const Json all =
      cli::propertiesToJson(cli::snapshotOf(m_instance.getProperties()), NullProperties::Shown);
  EXPECT_EQ(all.size(), 11U);
  for (const auto& [name, value] : all.items()) {
    EXPECT_TRUE(value.is_null()) << name;
    EXPECT_EQ(textOf(name), "NULL");
  }
  EXPECT_EQ(printed(NullProperties::Left), "");
}

TEST_F(OutputTest, PrintsFalseAndEmptyValuesAsThemselves) {
  m_instance.Truth.setValue(0);
  m_instance.Numbers.setValue({});
  m_instance.Id.setValue("");
  EXPECT_EQ(textOf("Truth"), "false");
  EXPECT_EQ(textOf("Numbers"), "{}");
  EXPECT_EQ(textOf("Id"), "\"\"");
  EXPECT_EQ(cli::toJson(m_instance.Numbers), Json::array());
}

TEST_F(OutputTest, LinesNamesUp) {
  m_instance.Id.setValue("one");
  m_instance.Reference.setText("C.");
  EXPECT_EQ(printed(NullProperties::Left), "  Id        = \"one\"\n  Reference = C.\n");
}

TEST_F(OutputTest, KeepsControlCharactersFromTheTerminal) {
  m_instance.Id.setValue("a\n\x1b[31m\\");
  EXPECT_EQ(textOf("Id"), "\"a\\n\\x1b[31m\\\\\"");

  std::ostringstream out;
  cli::printProperties(out,
                       {{"A\x1b[2J", cli::PropertySnapshot::Kind::Value, 1},
                        {"B", cli::PropertySnapshot::Kind::Reference, "C.K=\"\n\""}},
                       NullProperties::Left);
  EXPECT_EQ(out.str(), "  A\\x1b[2J = 1\n  B        = C.K=\"\\n\"\n");
}

TEST_F(OutputTest, GivesAnInstanceItsPath) {
  m_instance.Id.setKey();
  m_instance.Id.setValue("one");
  EXPECT_EQ(cli::instanceToJson(cli::snapshotOf(m_instance), NullProperties::Left),
            Json::parse(R"({"path": "Every_Type.Id=\"one\"", "properties": {"Id": "one"}})"));
}

TEST_F(OutputTest, PrintsDocumentsWithEveryKindOfValue) {
  std::ostringstream out;
  cli::printJson(out,
                 {{"numbers", {1, -2, 0.5}}, {"nothing", nullptr}, {"deep", {{"truth", true}}}});
  EXPECT_EQ(Json::parse(out.str()),
            Json::parse(R"({"numbers": [1, -2, 0.5], "nothing": null, "deep": {"truth": true}})"));
}

}  // namespace
