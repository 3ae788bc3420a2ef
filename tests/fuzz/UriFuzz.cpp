// Any text is a URI of a known scheme with a path, or of none without one.

#include <string>

#include "Os/Uri.h"
#include "tests/fuzz/Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const utils::Uri uri(text);
  test::require(uri.getScheme() != utils::Uri::kUnknown || uri.getPath().empty(),
                "without a scheme there is no path");
  test::require(!uri.isSupported() || uri.getScheme() == utils::Uri::kFile,
                "files alone are supported");
  test::require(text.size() >= uri.getPath().size(), "the path is in the text");
  return 0;
}
