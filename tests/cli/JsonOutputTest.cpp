#include <gtest/gtest.h>
#include <sstream>

#include "cli/JsonOutput.h"

namespace {

using client::Value;

TEST(JsonOutput, PrintsEveryKindOfValue) {
  std::ostringstream out;
  cli::printJson(out, Value::object({{"numbers", Value::array({Value(1), Value(-2), Value(0.5)})},
                                     {"longest", 18446744073709551615U},
                                     {"nothing", Value()},
                                     {"deep", Value::object({{"truth", true}})},
                                     {"text", "a\n\"b\""},
                                     {"none", Value::array()},
                                     {"empty", Value::object()}}));
  EXPECT_EQ(out.str(),
            "{\n"
            "  \"numbers\": [\n"
            "    1,\n"
            "    -2,\n"
            "    0.5\n"
            "  ],\n"
            "  \"longest\": 18446744073709551615,\n"
            "  \"nothing\": null,\n"
            "  \"deep\": {\n"
            "    \"truth\": true\n"
            "  },\n"
            "  \"text\": \"a\\n\\\"b\\\"\",\n"
            "  \"none\": [],\n"
            "  \"empty\": {}\n"
            "}\n");
}

TEST(JsonOutput, PrintsADocumentOnOneLine) {
  EXPECT_EQ(cli::toJsonLine(Value::object({{"a", Value::array({Value(1), Value(true)})}})),
            "{\"a\":[1,true]}");
  EXPECT_EQ(cli::toJsonLine(Value(1e300)), "1e+300");
  EXPECT_EQ(cli::toJsonLine(Value(3.0)), "3.0");
}

// A program reads the same text; a terminal shows it as it stands.
TEST(JsonOutput, EscapesWhatWouldDisturbATerminal) {
  EXPECT_EQ(cli::toJsonLine(Value("\xe2\x80\xae\xe2\x81\xa6\xe2\x80\xa8\xc2\x9b\x7f\x1b")),
            R"("\u202e\u2066\u2028\u009b\u007f\u001b")");
  EXPECT_EQ(cli::toJsonLine(Value("\xc3\xbc\xf0\x9f\x98\x80")), "\"\xc3\xbc\xf0\x9f\x98\x80\"");
}

}  // namespace
