// Texts that may be any bytes.

#include <gmock/gmock.h>

#include "Utils/Printable.h"

namespace {

TEST(PosixPrintable, EscapesEachByteOfADisturbance) {
  EXPECT_EQ(utils::toPrintable("a\xc2\x9b"
                               "31m\xe2\x80\xae\xc2\xa0\xc3\x9b"),
            "a\\xc2\\x9b"
            "31m\\xe2\\x80\\xae\xc2\xa0\xc3\x9b");
}

TEST(PosixPrintable, EscapesBytesThatAreNoUtf8) {
  EXPECT_EQ(utils::toPrintable("a\xc2"), "a\\xc2");
  EXPECT_EQ(utils::toPrintable("\x9b"
                               "31m\xff"),
            "\\x9b"
            "31m\\xff");
}

}  // namespace
