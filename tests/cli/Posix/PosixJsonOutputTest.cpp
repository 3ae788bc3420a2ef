// Documents of texts that may be any bytes.

#include <gmock/gmock.h>
#include <sstream>

#include "cli/JsonOutput.h"

namespace {

TEST(PosixJsonOutput, ShowsBytesThatAreNoUtf8AsReplacements) {
  std::ostringstream out;
  cli::printJson(out, client::Value::object({{"name", "\xC3\xBC\xff"}}));
  EXPECT_EQ(out.str(), "{\n  \"name\": \"\xC3\xBC\xEF\xBF\xBD\"\n}\n");
}

}  // namespace
