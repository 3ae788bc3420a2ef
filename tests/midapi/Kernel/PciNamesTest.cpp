#include <filesystem>
#include <gmock/gmock.h>
#include <string>
#include <thread>
#include <vector>

#include "midapi/Kernel/PciNames.h"
#include "tests/support/TempDirectory.h"

namespace {

using ma::PciNames;

class PciNamesTest : public testing::Test {
 protected:
  test::TempDirectory m_directory;
};

const std::string kList =
    "# Devices\n"
    "1af4  Red Sands, Inc.\n"
    "\t1000  Lab network device\n"
    "\t\t1af4 0001  A board\n"
    "8086  \x1b[2J Corporation\n"
    "\t10d3  82574L\xff\n";

TEST_F(PciNamesTest, AreThoseOfTheList) {
  PciNames names(m_directory.write("pci.ids", kList));
  EXPECT_EQ(names.nameOf(0x1AF4, 0x1000), "Red Sands, Inc. Lab network device");
}

TEST_F(PciNamesTest, AreFitForATerminal) {
  PciNames names(m_directory.write("pci.ids", kList));
  EXPECT_EQ(names.nameOf(0x8086, 0x10D3), "\\x1b[2J Corporation 82574L\\xff");
}

TEST_F(PciNamesTest, AreEmptyForWhatIsNotInTheList) {
  PciNames names(m_directory.write("pci.ids", kList));
  EXPECT_EQ(names.nameOf(0x1AF4, 0x1001), "");
  EXPECT_EQ(names.nameOf(0x1234, 0x1000), "");
  EXPECT_EQ(names.nameOf(0x1AF4, 0x1000), "Red Sands, Inc. Lab network device");
}

TEST_F(PciNamesTest, AreEmptyWithoutAList) {
  PciNames names(m_directory.path() / "none");
  EXPECT_EQ(names.nameOf(0x1AF4, 0x1000), "");
  EXPECT_EQ(names.nameOf(0x1AF4, 0x1000), "");
}

TEST_F(PciNamesTest, AreEmptyWhereTheListIsDamaged) {
  for (const std::string& list : {kList + "junk\n", std::string("\t1000  x\n"),
                                  std::string("zzzz  x\n"), std::string("1af4")}) {
    PciNames names(m_directory.write("pci.ids", list));
    EXPECT_EQ(names.nameOf(0x1AF4, 0x1000), "") << list;
    EXPECT_EQ(names.nameOf(0x1AF4, 0x1000), "") << list;
  }
}

TEST_F(PciNamesTest, AreAskedForByManyAtOnce) {
  PciNames names(m_directory.write("pci.ids", kList));
  std::vector<std::thread> threads;
  threads.reserve(4);
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&names] {
      EXPECT_EQ(names.nameOf(0x1AF4, 0x1000), "Red Sands, Inc. Lab network device");
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

TEST_F(PciNamesTest, AreThoseOfTheSystem) {
  if (!std::filesystem::exists("/usr/share/misc/pci.ids")) {
    GTEST_SKIP() << "pci.ids is not installed: no device has a name";
  }
  EXPECT_EQ(ma::systemPciNames().nameOf(0x8086, 0x10D3),
            "Intel Corporation 82574L Gigabit Network Connection");
}

}  // namespace
