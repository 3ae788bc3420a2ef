// Any text is a datetime or none; what is written of one reads the same.

#include <optional>
#include <string_view>

#include "Utils/Datetime.h"
#include "tests/fuzz/Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (const auto read = utils::Datetime::fromCimText(text)) {
    const std::string written = read->toCimText();
    test::require(written.size() == 25, "all have one length");
    const auto again = utils::Datetime::fromCimText(written);
    test::require(again && again->isTimestamp == read->isTimestamp, "what is written reads");
    test::require(again->toCimText() == written, "the same");
  }
  return 0;
}
