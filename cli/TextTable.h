// Text for people in columns that line up; what a cell holds cannot disturb a terminal. Any thread.

#ifndef ORVEX_CLI_TEXTTABLE_H_
#define ORVEX_CLI_TEXTTABLE_H_

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

// Returns the number of characters of UTF-8 text.
[[nodiscard]] std::size_t countCharacters(std::string_view text);

// Rows under headings, each column as wide as its longest cell.
class TextTable {
 public:
  explicit TextTable(std::vector<std::string> headings) : m_rows{std::move(headings)} {}

  // Takes as many cells as there are headings; what is missing is empty.
  void addRow(std::vector<std::string> cells);

  void print(std::ostream& out) const;

 private:
  std::vector<std::vector<std::string>> m_rows;
};

}  // namespace cli

#endif  // ORVEX_CLI_TEXTTABLE_H_
