#include "Utils/Conversions.h"

#include <algorithm>
#include <locale>
#include <sstream>

#include "Utils/Format.h"
#include "Utils/Log.h"

namespace utils {
namespace {

constexpr LogSource kLog{"Conversions"};

constexpr const char* kBlanks = " \t";

bool isHexadecimal(const std::string& text) {
  return text.size() >= 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
}

}  // namespace

std::string trim(const std::string& text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string quote(const std::string& text) {
  std::string quoted = "\"";
  for (const char character : text) {
    if (character == '"') {
      quoted.push_back('\\');
    }
    quoted.push_back(character);
  }
  quoted.push_back('"');
  return quoted;
}

std::string unquote(std::string_view text) {
  if (text.size() < 2 || text.front() != '"' || text.back() != '"') {
    return std::string(text);
  }
  const std::string_view quoted = text.substr(1, text.size() - 2);
  std::string plain;
  plain.reserve(quoted.size());
  for (std::size_t i = 0; i < quoted.size(); ++i) {
    const bool isEscape = quoted[i] == '\\' && i + 1 < quoted.size() && quoted[i + 1] == '"';
    if (!isEscape) {
      plain.push_back(quoted[i]);
    }
  }
  return plain;
}

std::vector<std::string> split(std::string_view text, char separator, char quoteCharacter) {
  const std::vector<std::string_view> pieces = splitViews(text, separator, quoteCharacter);
  return {pieces.begin(), pieces.end()};
}

std::vector<std::string_view> splitViews(std::string_view text, char separator,
                                         char quoteCharacter) {
  std::vector<std::string_view> pieces;
  if (text.empty()) {
    return pieces;
  }
  std::size_t start = 0;
  bool isQuoted = false;
  bool isAfterBackslash = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char character = text[i];
    if (character == quoteCharacter && quoteCharacter != kNoQuote) {
      isQuoted = isQuoted ? isAfterBackslash : true;
    }
    if (character == separator && !isQuoted) {
      pieces.push_back(text.substr(start, i - start));
      start = i + 1;
    }
    isAfterBackslash = character == '\\';
  }
  pieces.push_back(text.substr(start));
  return pieces;
}

bool toUint(std::string& text, std::uint32_t& value) {
  text = trim(text);
  const bool hexadecimal = isHexadecimal(text);
  if (hexadecimal) {
    logDebug(kLog, "utils::toUint", "HEX: %s", text.c_str());
  } else if (text.starts_with('-')) {
    // A stream reads a negative number into an unsigned one, and "%d" would write it back alike.
    return false;
  }
  std::istringstream stream(text);
  stream.imbue(std::locale::classic());
  stream >> (hexadecimal ? std::hex : std::dec);
  std::uint32_t number = 0;
  if (!(stream >> number)) {
    return false;
  }
  const int width = static_cast<int>(text.size()) - 2;
  const std::string writtenBack =
      toUpper(hexadecimal ? format("0x%0*x", width, number)
                          : format("%d", static_cast<std::int32_t>(number)));
  text = toUpper(text);
  if (writtenBack != text) {
    logDebug(kLog, "utils::toUint", "CONV: %s <> %s", writtenBack.c_str(), text.c_str());
    return false;
  }
  value = number;
  return true;
}

std::string toUpper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char character) {
    return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A')
                                                : character;
  });
  return text;
}

}  // namespace utils
