// Any three texts, one on each line, have an order: the same from both sides, and without a circle.

#include <array>
#include <compare>
#include <string_view>

#include "midapi/VersionText.h"
#include "tests/fuzz/Fuzz.h"

namespace {

std::string_view takeLine(std::string_view& text) {
  const std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(line.size() < text.size() ? line.size() + 1 : line.size());
  return line;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view text(reinterpret_cast<const char*>(data), size);
  std::array<std::string_view, 3> versions;
  for (std::string_view& version : versions) {
    version = takeLine(text);
    test::require(ma::compareVersions(version, version) == 0, "a version is itself");
  }
  for (std::size_t first = 0; first < versions.size(); ++first) {
    const std::string_view one = versions[first];
    const std::string_view other = versions[(first + 1) % versions.size()];
    const std::string_view third = versions[(first + 2) % versions.size()];
    const std::weak_ordering order = ma::compareVersions(one, other);
    test::require(ma::compareVersions(other, one) == (0 <=> order), "it is the same backwards");
    const std::weak_ordering next = ma::compareVersions(other, third);
    if (order <= 0 && next <= 0) {
      test::require(ma::compareVersions(one, third) <= 0, "there is no circle");
      test::require(order != 0 || next != 0 || ma::compareVersions(one, third) == 0,
                    "what is the same is so with others");
    }
  }
  return 0;
}
