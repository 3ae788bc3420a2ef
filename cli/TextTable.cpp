#include "cli/TextTable.h"

#include <algorithm>
#include <utility>

#include "Utils/Printable.h"

namespace cli {
namespace {

constexpr std::size_t kGap = 2;
}  // namespace

std::size_t countCharacters(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char character) {
    return (static_cast<unsigned char>(character) & 0xC0U) != 0x80U;
  }));
}

void TextTable::addRow(std::vector<std::string> cells) {
  cells.resize(m_rows.front().size());
  std::transform(cells.begin(), cells.end(), cells.begin(),
                 [](const std::string& cell) { return utils::toPrintable(cell); });
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
