#include <gmock/gmock.h>
#include <sstream>

#include "cli/TextTable.h"

namespace {

std::string printed(const cli::TextTable& table) {
  std::ostringstream out;
  table.print(out);
  return out.str();
}

TEST(TextTable, GivesColumnsTheWidthOfTheirLongestCell) {
  cli::TextTable table({"PORT", "NAME"});
  table.addRow({"0000:03:00.0", "a"});
  table.addRow({"1", "long name"});
  EXPECT_EQ(printed(table),
            "PORT          NAME\n"
            "0000:03:00.0  a\n"
            "1             long name\n");
}

TEST(TextTable, CountsCharactersNotBytes) {
  cli::TextTable table({"A", "B"});
  table.addRow({"\u00e4\u20ac", "x"});
  EXPECT_EQ(printed(table), "A   B\n\u00e4\u20ac  x\n");
  EXPECT_EQ(cli::countCharacters("\u00e4\u20ac"), 2U);
}

TEST(TextTable, LeavesMissingCellsEmpty) {
  cli::TextTable table({"A", "B"});
  table.addRow({"x"});
  EXPECT_EQ(printed(table), "A  B\nx\n");
}

TEST(TextTable, EscapesControlCharactersInCells) {
  cli::TextTable table({"NAME"});
  table.addRow({"a\tb\x1b\x7f\r\n"});
  EXPECT_EQ(printed(table), "NAME\na\\tb\\x1b\\x7f\\r\\n\n");
}

}  // namespace
