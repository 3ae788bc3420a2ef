#include <gtest/gtest.h>
#include <sstream>

#include "cli/Remarks.h"

namespace {

std::string printed(const cli::Remarks& remarks) {
  std::ostringstream out;
  remarks.print(out);
  return out.str();
}

TEST(Remarks, SayOnceWhatIsSaidOfSeveral) {
  cli::Remarks remarks("Notes");
  remarks.add("0000:03:00", "one");
  remarks.add("0000:04:00", "a\x1b");
  remarks.add("0000:05:00", "one");
  EXPECT_EQ(printed(remarks),
            "\nNotes:\n"
            "  0000:03:00, 0000:05:00: one\n"
            "  0000:04:00: a\\x1b\n");
}

TEST(Remarks, AreNothingWhereThereAreNone) {
  EXPECT_EQ(printed(cli::Remarks("Notes")), "");
}

}  // namespace
