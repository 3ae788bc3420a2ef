#include "inventory/VersionNumbers.h"

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "Utils/Conversions.h"

namespace inventory {
namespace {

constexpr std::uint64_t kMaxUint16 = std::numeric_limits<std::uint16_t>::max();
constexpr std::size_t kMostNumbers = 4;
constexpr std::size_t kBuild = 3;  // the place of the one that may be large

std::optional<std::uint64_t> toNumber(std::string_view text) {
  std::uint64_t number = 0;
  const char* const end = text.data() + text.size();
  return std::from_chars(text.data(), end, number) == std::from_chars_result{end, {}}
             ? std::optional(number)
             : std::nullopt;
}

// Returns nothing for a text that is not made of that.
std::vector<std::uint64_t> readNumbers(std::string_view text) {
  std::vector<std::uint64_t> numbers;
  for (const std::string_view piece : utils::splitViews(text, '.', utils::kNoQuote)) {
    const auto number = toNumber(piece);
    if (!number || numbers.size() == kMostNumbers ||
        (numbers.size() != kBuild && *number > kMaxUint16)) {
      return {};
    }
    numbers.push_back(*number);
  }
  return numbers;
}

}  // namespace

void setVersionNumbers(CIM_SoftwareIdentity& software, std::string_view text) {
  const std::vector<std::uint64_t> numbers = readNumbers(text);
  core::CimPropertyUint16* const properties[] = {&software.MajorVersion, &software.MinorVersion,
                                                 &software.RevisionNumber, &software.BuildNumber};
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    if (numbers[i] <= kMaxUint16) {
      properties[i]->setValue(static_cast<std::uint16_t>(numbers[i]));
    }
  }
  if (numbers.size() > kBuild) {
    const bool isLarge = numbers[kBuild] > kMaxUint16;
    software.IsLargeBuildNumber.setValue(isLarge ? 1 : 0);
    if (isLarge) {
      software.LargeBuildNumber.setValue(numbers[kBuild]);
    }
  }
}

}  // namespace inventory
