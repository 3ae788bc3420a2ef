// Documents of texts in the code page.

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/JsonOutput.h"
#include "tests/support/Windows/Umlauts.h"

namespace {

TEST(WindowsJsonOutput, IsUtf8HoweverDeepATextStands) {
  test::demandWesternCodePage();
  std::ostringstream out;
  const client::Value name = client::Value::object({{"name", test::kUmlautText}});
  cli::printJson(
      out, client::Value::object({{"names", client::Value::array({name, client::Value("\xFF")})}}));

  const auto document = nlohmann::json::parse(out.str());
  EXPECT_EQ(document["names"][0]["name"], test::kUmlautUtf8);
  EXPECT_EQ(document["names"][1], "\xC3\xBF");
}

}  // namespace
