// Documents of texts in the code page.

#include <gmock/gmock.h>
#include <sstream>

#include "cli/Output.h"
#include "tests/support/Windows/Umlauts.h"

namespace {

TEST(WindowsOutput, IsUtf8HoweverDeepATextStands) {
  test::demandWesternCodePage();
  std::ostringstream out;
  cli::printJson(out, {{"names", {{{"name", test::kUmlautText}}, "\xFF"}}});

  const auto document = cli::Json::parse(out.str());
  EXPECT_EQ(document["names"][0]["name"], test::kUmlautUtf8);
  EXPECT_EQ(document["names"][1], "\xC3\xBF");
}

}  // namespace
