#include "daemon/BasicCredentials.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "Utils/Ascii.h"

namespace quorveld {
namespace {

constexpr std::string_view kScheme = "basic";
constexpr std::string_view kDigits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char kPadding = '=';
constexpr unsigned kBitsOfDigit = 6;
constexpr unsigned kBitsOfByte = 8;
constexpr std::size_t kDigitsOfGroup = 4;
constexpr unsigned char kDelete = 0x7F;

std::string_view withoutBlanks(std::string_view text) {
  constexpr std::string_view kBlanks = " \t";
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) {
    return {};
  }
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

std::optional<std::string> decodeBase64(std::string_view text) {
  if (text.empty() || text.size() % kDigitsOfGroup != 0) {
    return std::nullopt;
  }
  for (int padding = 0; padding < 2 && text.ends_with(kPadding); ++padding) {
    text.remove_suffix(1);
  }
  std::string bytes;
  std::uint32_t bits = 0;
  unsigned count = 0;
  for (const char sign : text) {
    const std::size_t digit = kDigits.find(sign);
    if (digit == std::string_view::npos) {
      return std::nullopt;
    }
    bits = (bits << kBitsOfDigit) | static_cast<std::uint32_t>(digit);
    count += kBitsOfDigit;
    if (count >= kBitsOfByte) {
      count -= kBitsOfByte;
      bytes += static_cast<char>((bits >> count) & 0xFF);
    }
    bits &= (1U << count) - 1;
  }
  // What is left over of the last digit says nothing, so it has to be zero: one writing for a text.
  return bits == 0 ? std::optional(bytes) : std::nullopt;
}

bool hasControlCharacter(const std::string& text) {
  return std::any_of(text.begin(), text.end(), [](char sign) {
    const auto byte = static_cast<unsigned char>(sign);
    return byte < ' ' || byte == kDelete;
  });
}

}  // namespace

std::optional<BasicCredentials> parseBasicCredentials(std::string_view field) {
  field = withoutBlanks(field);
  const std::string_view scheme = field.substr(0, kScheme.size());
  if (!utils::isSameIgnoringCase(scheme, kScheme) ||
      field.substr(scheme.size()).find_first_not_of(' ') == 0) {
    return std::nullopt;
  }
  const std::optional<std::string> text = decodeBase64(withoutBlanks(field.substr(scheme.size())));
  if (!text || hasControlCharacter(*text)) {
    return std::nullopt;
  }
  const std::size_t colon = text->find(':');
  if (colon == std::string::npos || colon == 0) {
    return std::nullopt;
  }
  return BasicCredentials{text->substr(0, colon), text->substr(colon + 1)};
}

}  // namespace quorveld
