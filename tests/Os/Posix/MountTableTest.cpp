#include <gtest/gtest.h>
#include <string>

#include "Os/Posix/MountTable.h"

namespace {

const os::MountTable kTable(
    "22 1 8:1 / / rw,relatime shared:1 - ext4 /dev/sda1 rw\n"
    "25 22 0:23 / /srv/fw rw,nosuid shared:7 master:2 - nfs4 host:/fw rw\n"
    "26 22 0:24 / /srv/two\\040words\\134 rw - tmpfs none rw\n"
    "27 22 0:23 /sub /mnt rw - nfs4 host:/fw rw\n"
    "28 22 0:30 / /covered rw - tmpfs none rw\n"
    "29 28 0:31 / /covered rw - tmpfs none rw\n"
    "no line of a table\n"
    "\n"
    "30 22 0:40 / /last rw");

TEST(MountTable, TellsWhatIsMountedAtADirectory) {
  EXPECT_EQ(kTable.findAt("/"), "8:1");
  EXPECT_EQ(kTable.findAt("/srv/fw"), "0:23");
  EXPECT_EQ(kTable.findAt("/srv/two words\\"), "0:24");
  EXPECT_EQ(kTable.findAt("/covered"), "0:31");
  EXPECT_EQ(kTable.findAt("/last"), "0:40");
  EXPECT_EQ(kTable.findAt("/srv"), "");
}

TEST(MountTable, TellsWhatHoldsADirectory) {
  EXPECT_EQ(kTable.findHolding("/srv/fw/deep/er"), "0:23");
  EXPECT_EQ(kTable.findHolding("/mnt/x"), "0:23");
  EXPECT_EQ(kTable.findHolding("/srv/fwx"), "8:1");
  EXPECT_EQ(kTable.findHolding("/"), "8:1");
}

TEST(MountTable, MayBeEmpty) {
  EXPECT_TRUE(os::MountTable("").isEmpty());
  EXPECT_EQ(os::MountTable("").findHolding("/srv"), "");
}

TEST(MountTable, OfTheProcessHasARoot) {
  EXPECT_NE(os::MountTable::ofProcess().findAt("/"), "");
}

}  // namespace
