#include "core/ValueNames.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>

#include "Utils/Ascii.h"

namespace core {
namespace {

constexpr std::string_view kRangeSign = "..";

// Of a row: from the first number to the last.
struct Range {
  std::int64_t first = std::numeric_limits<std::int64_t>::min();
  std::int64_t last = std::numeric_limits<std::int64_t>::max();
  enum Kind { Number, Bounded, Others } kind = Number;
};

// Reads a decimal number, or a hexadecimal one with 0x in front.
std::optional<std::int64_t> readNumber(std::string_view text) {
  int base = 10;
  if (text.size() > 2 && utils::isSameIgnoringCase(text.substr(0, 2), "0x")) {
    base = 16;
    text.remove_prefix(2);
  }
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  if (error != std::errc() || end != text.data() + text.size()) {
    return std::nullopt;
  }
  return number;
}

std::optional<Range> readRange(std::string_view text) {
  Range range;
  const std::size_t sign = text.find(kRangeSign);
  const std::string_view first = text.substr(0, sign);
  if (sign == std::string_view::npos) {
    const std::optional<std::int64_t> number = readNumber(first);
    return number ? std::optional<Range>({*number, *number, Range::Number}) : std::nullopt;
  }
  const std::string_view last = text.substr(sign + kRangeSign.size());
  range.kind = first.empty() && last.empty() ? Range::Others : Range::Bounded;
  for (const auto& [bound, end] : {std::pair{first, &range.first}, std::pair{last, &range.last}}) {
    if (!bound.empty()) {
      const std::optional<std::int64_t> number = readNumber(bound);
      if (!number) {
        return std::nullopt;
      }
      *end = *number;
    }
  }
  return range;
}

}  // namespace

std::string_view findValueName(std::span<const ValueName> values, std::int64_t number) {
  std::string_view name;
  Range::Kind nearest = Range::Others;
  bool isFound = false;
  for (const ValueName& row : values) {
    const std::optional<Range> range = readRange(row.value);
    if (range && range->first <= number && number <= range->last &&
        (!isFound || range->kind < nearest)) {
      name = row.name;
      nearest = range->kind;
      isFound = true;
    }
  }
  return name;
}

std::string_view findValueName(std::span<const ValueName> values, std::string_view text) {
  const auto found = std::find_if(values.begin(), values.end(),
                                  [text](const ValueName& row) { return row.value == text; });
  return found != values.end() ? found->name : std::string_view();
}

}  // namespace core
