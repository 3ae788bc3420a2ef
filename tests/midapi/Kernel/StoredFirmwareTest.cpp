#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "midapi/Kernel/StoredFirmware.h"

namespace {

using ma::FirmwareVersions;
using ma::FlashRoute;
using ma::FlashWay;
using ma::judgeStored;
using ma::StoredFirmware;
using ma::whatItTakes;

using Versions = std::vector<FirmwareVersions>;

// The route of a driver that the table knows.
std::string takes(const std::string& driver, FlashWay way, StoredFirmware stored) {
  ma::KernelFunction function;
  function.pci.driver = driver;
  return whatItTakes({&function, &ma::driverOf(driver, false), way, "", ""}, stored);
}

TEST(StoredFirmware, IsInForceWhereItRuns) {
  EXPECT_EQ(judgeStored(Versions{{"fw.undi", "1.0", "1.0"}, {"fw.mgmt", "7.1", "7.1"}}),
            StoredFirmware::InForce);
  EXPECT_EQ(judgeStored(Versions{{"fw", "1.0", "1.0"}}), StoredFirmware::InForce);
}

TEST(StoredFirmware, WaitsWhereAnotherOneRuns) {
  EXPECT_EQ(judgeStored(Versions{{"fw.undi", "1.0", "1.0"}, {"fw.mgmt", "7.1", "7.2"}}),
            StoredFirmware::Waiting);
  EXPECT_EQ(judgeStored(Versions{{"fw.undi", "1.0", "1.1"}, {"fw.mgmt", "7.1", ""}}),
            StoredFirmware::Waiting);
}

TEST(StoredFirmware, IsUnknownWhereAPartOfItIsNotTold) {
  EXPECT_EQ(judgeStored(Versions{}), StoredFirmware::Unknown);
  EXPECT_EQ(judgeStored(Versions{{"fw", "1.0", ""}}), StoredFirmware::Unknown);
  EXPECT_EQ(judgeStored(Versions{{"fw.undi", "1.0", "1.0"}, {"fw.mgmt", "7.1", ""}}),
            StoredFirmware::Unknown);
}

TEST(StoredFirmware, IsNotJudgedByWhatIsNoPartOfIt) {
  for (const char* name : {"fw.mgmt.api", "fw.api", "fw.psid", "fw.bundle_id", "drv.spec", "fwx"}) {
    EXPECT_EQ(judgeStored(Versions{{"fw.mgmt", "7.1", "7.1"}, {name, "1", ""}}),
              StoredFirmware::InForce)
        << name;
  }
}

TEST(StoredFirmware, SaysWhatItTakesInstead) {
  EXPECT_EQ(takes("hinic", FlashWay::Devlink, StoredFirmware::Waiting),
            "its driver hinic cannot put stored firmware into force; reboot the machine, or power "
            "cycle it where that is not enough");
  EXPECT_EQ(takes("cxgb4", FlashWay::Ethtool, StoredFirmware::Unknown),
            "its driver cxgb4 cannot put stored firmware into force, and does not tell all that is "
            "stored; after an update, reload the driver, or reboot the machine");
}

TEST(StoredFirmware, SaysWhereDevlinkWouldPutItIntoForce) {
  EXPECT_EQ(takes("bnxt_en", FlashWay::Ethtool, StoredFirmware::Unknown),
            "its driver bnxt_en puts stored firmware into force by devlink, by which it does not "
            "answer, as in a network namespace of its own; else reboot the machine, or power cycle "
            "it where that is not enough");
}

}  // namespace
