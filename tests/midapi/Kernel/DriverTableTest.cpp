#include <algorithm>
#include <array>
#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "midapi/Kernel/DriverTable.h"
#include "tests/support/TempDirectory.h"

namespace {

using ma::componentName;
using ma::driverOf;
using ma::FirmwareFormat;
using ma::KernelDriver;
using testing::ElementsAreArray;

constexpr std::array kFormats = {
    FirmwareFormat::OptionRom, FirmwareFormat::PldmPackage, FirmwareFormat::Mfa2,
    FirmwareFormat::BnxtPart,  FirmwareFormat::Hinic,       FirmwareFormat::QedNvm,
    FirmwareFormat::Unknown,
};

std::string waysOf(const KernelDriver& driver) {
  if (driver.hasDevlink) {
    return driver.hasEthtool ? "devlink, else ethtool" : "devlink";
  }
  return driver.hasEthtool ? "ethtool" : "none";
}

std::string filesOf(const KernelDriver& driver) {
  std::string files;
  for (const FirmwareFormat format : kFormats) {
    if (ma::takes(driver, format)) {
      files += files.empty() ? "" : ", ";
      files += format == FirmwareFormat::Unknown ? "others (trust)" : nameOf(format);
      files += tellsDevices(format) || format == FirmwareFormat::Unknown ? "" : " (trust)";
    }
  }
  return files.empty() ? "none" : files;
}

std::string activationOf(const KernelDriver& driver) {
  if (!driver.canWrite()) {
    return "";
  }
  return (driver.canActivate ? "`quorvel activate`; " : "") + std::string(driver.activation);
}

// Returns the driver's row of the page.
std::string rowOf(const KernelDriver& driver) {
  return "| " + std::string(driver.name) + " | " + waysOf(driver) + " | " + filesOf(driver) +
         " | " + (driver.holdsConfiguration ? "waits with ethtool" : "") + " | " +
         activationOf(driver) + " |";
}

std::vector<std::string> rowsOfPage() {
  std::vector<std::string> rows;
  const std::string page = test::readText(QUORVEL_TEST_SOURCE_ROOT "/docs/adapters.md");
  std::size_t at = page.find("| driver | way |");
  at = page.find('\n', page.find('\n', at) + 1) + 1;
  while (page.compare(at, 1, "|") == 0) {
    const std::size_t end = page.find('\n', at);
    rows.push_back(page.substr(at, end - at));
    at = end + 1;
  }
  return rows;
}

TEST(DriverTable, IsWhatThePageSays) {
  std::vector<std::string> rows;
  for (const KernelDriver& driver : ma::knownDrivers()) {
    rows.push_back(rowOf(driver));
  }
  EXPECT_THAT(rowsOfPage(), ElementsAreArray(rows));
}

TEST(DriverTable, HasEachDriverThatTakesAFormat) {
  for (const FirmwareFormat format : kFormats) {
    for (const std::string_view name : ma::driversOf(format)) {
      const KernelDriver& driver = driverOf(name, false);
      EXPECT_EQ(driver.name, name);
      EXPECT_TRUE(driver.canWrite()) << name;
      EXPECT_TRUE(ma::takes(driver, format)) << name;
    }
  }
}

TEST(DriverTable, IsOrdered) {
  EXPECT_TRUE(std::ranges::is_sorted(ma::knownDrivers(), {}, &KernelDriver::name));
}

TEST(DriverTable, KnowsTheNamesOfComponents) {
  const KernelDriver& ice = driverOf("ice", true);
  EXPECT_EQ(componentName(ice, 5), "fw.undi");
  EXPECT_EQ(componentName(ice, 6), "fw.mgmt");
  EXPECT_EQ(componentName(ice, 8), "fw.netlist");
  EXPECT_EQ(componentName(ice, 7), "");
  EXPECT_EQ(componentName(driverOf("hinic", true), 5), "");
}

TEST(DriverTable, LetsAnotherDriverWithDevlinkTakeWhatSaysForWhichDevicesItIs) {
  const KernelDriver& driver = driverOf("testnic", true);
  EXPECT_TRUE(driver.hasDevlink);
  EXPECT_TRUE(ma::takes(driver, FirmwareFormat::PldmPackage));
  EXPECT_TRUE(ma::takes(driver, FirmwareFormat::OptionRom));
  EXPECT_FALSE(ma::takes(driver, FirmwareFormat::Mfa2));
  EXPECT_FALSE(ma::takes(driver, FirmwareFormat::Unknown));
  EXPECT_EQ(componentName(driver, 6), "fw.mgmt");
}

TEST(DriverTable, BelievesNobodyElse) {
  EXPECT_FALSE(driverOf("e1000e", false).canWrite());
  EXPECT_FALSE(ma::takes(driverOf("e1000e", false), FirmwareFormat::OptionRom));
}

TEST(DriverTable, NeverOffersAProfileAsFirmware) {
  EXPECT_FALSE(driverOf("i40e", true).canWrite());
}

}  // namespace
