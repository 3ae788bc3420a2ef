#include <gmock/gmock.h>
#include <sstream>

#include "cli/Output.h"
#include "tests/client/EveryType.h"

namespace {

using client::NullProperties;

constexpr auto kValue = client::PropertySnapshot::Kind::Value;

class OutputTest : public testing::Test {
 protected:
  std::string textOf(const std::string& name) {
    return cli::toText(client::snapshotOf(*m_instance.getProperty(name)));
  }

  std::string printed(NullProperties nulls) {
    std::ostringstream out;
    cli::printProperties(out, client::snapshotOf(m_instance.getProperties()), nulls);
    return out.str();
  }

  test::EveryType m_instance;
};

TEST_F(OutputTest, PrintsEveryTypeAsText) {
  m_instance.fill();
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

TEST_F(OutputTest, PrintsNullOfEveryTypeOnlyWhenAsked) {
  for (const client::PropertySnapshot& property : client::snapshotOf(m_instance.getProperties())) {
    EXPECT_EQ(cli::toText(property), "NULL") << property.name;
  }
  EXPECT_EQ(printed(NullProperties::Left), "");
  EXPECT_THAT(printed(NullProperties::Shown), testing::StartsWith("  Id        = NULL\n"));
}

TEST_F(OutputTest, PrintsWhatAHostMayGiveBesides) {
  const client::Value embedded = client::Value::object({{"path", "C.K=1"}, {"n", 1}});
  EXPECT_EQ(cli::toText({"P", kValue, embedded}), "{\"path\":\"C.K=1\",\"n\":1}");
  EXPECT_EQ(cli::toText({"P", kValue, client::Value(0.5)}), "0.5");
  EXPECT_EQ(cli::toText({"P", kValue, client::Value(3.0)}), "3.0");
  EXPECT_EQ(cli::toText({"P", kValue, client::Value::array({client::Value(1), client::Value()})}),
            "{1, null}");
}

TEST_F(OutputTest, PrintsFalseAndEmptyValuesAsThemselves) {
  m_instance.Truth.setValue(0);
  m_instance.Numbers.setValue({});
  m_instance.Id.setValue("");
  EXPECT_EQ(textOf("Truth"), "false");
  EXPECT_EQ(textOf("Numbers"), "{}");
  EXPECT_EQ(textOf("Id"), "\"\"");
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
  cli::printProperties(
      out,
      {{"A\x1b[2J", kValue, client::Value(1)},
       {"B", client::PropertySnapshot::Kind::Reference, client::Value("C.K=\"\n\"")}},
      NullProperties::Left);
  EXPECT_EQ(out.str(), "  A\\x1b[2J = 1\n  B        = C.K=\"\\n\"\n");
}

}  // namespace
