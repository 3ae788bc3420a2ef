#include "cli/TextTable.h"

#include <algorithm>
#include <utility>

namespace cli {
namespace {

constexpr std::size_t kGap = 2;
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

std::size_t countCharacters(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char character) {
    return (static_cast<unsigned char>(character) & 0xC0U) != 0x80U;
  }));
}

void TextTable::addRow(std::vector<std::string> cells) {
  cells.resize(m_rows.front().size());
  std::transform(cells.begin(), cells.end(), cells.begin(),
                 [](const std::string& cell) { return toPrintable(cell); });
  m_rows.push_back(std::move(cells));
}

void TextTable::print(std::ostream& out) const {
  std::vector<std::size_t> widths(m_rows.front().size());
  for (const auto& row : m_rows) {
    for (std::size_t column = 0; column < row.size(); ++column) {
      widths[column] = std::max(widths[column], countCharacters(row[column]));
    }
  }
  for (const auto& row : m_rows) {
    std::string line;
    for (std::size_t column = 0; column < row.size(); ++column) {
      const std::size_t padding = widths[column] + kGap - countCharacters(row[column]);
      line += row[column] + std::string(padding, ' ');
    }
    line.erase(line.find_last_not_of(' ') + 1);
    out << line << '\n';
  }
}

}  // namespace cli
