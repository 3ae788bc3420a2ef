#include "client/Texts.h"

namespace client {
namespace {

constexpr unsigned kFirstPrintable = 0x20;
constexpr unsigned kDelete = 0x7F;

std::string escapeOf(unsigned char byte) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  switch (byte) {
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    default:
      return std::string("\\x") + kDigits[byte >> 4] + kDigits[byte & 0xF];
  }
}

// Returns whether the text begins with one of the control characters U+0080 to U+009F in UTF-8, of
// which one begins a command to the terminal as ESC [ does.
bool isLateControl(std::string_view text) {
  constexpr unsigned kEnd = 0xA0;
  return text.size() > 1 && text[0] == '\xc2' && static_cast<unsigned char>(text[1]) < kEnd;
}

}  // namespace

std::string toPrintable(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte < kFirstPrintable || byte == kDelete) {
      result += escapeOf(byte);
    } else if (isLateControl(text.substr(i))) {
      result += escapeOf(byte) + escapeOf(static_cast<unsigned char>(text[++i]));
    } else {
      result += text[i];
    }
  }
  return result;
}

std::string join(const std::vector<std::string>& texts, const char* separator) {
  std::string joined;
  for (const std::string& text : texts) {
    joined += (joined.empty() ? "" : separator) + text;
  }
  return joined;
}

std::string quoteForShell(const std::string& text) {
  constexpr std::string_view kPlain =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_./:@%+=,";
  if (!text.empty() && text.find_first_not_of(kPlain) == std::string::npos) {
    return text;
  }
  std::string quoted = "'";
  for (const char character : text) {
    if (character == '\'') {
      quoted += "'\\''";
    } else {
      quoted += character;
    }
  }
  return quoted + "'";
}

}  // namespace client
