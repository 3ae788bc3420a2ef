#include <gmock/gmock.h>

#include "Utils/FirmwareTypes.h"

namespace {

using utils::FirmwareType;
using utils::FirmwareVersion;

TEST(FirmwareType, HasTheNumbersAndNamesThatClientsUse) {
  struct Row {
    FirmwareType type;
    int number;
    const char* name;
  };
  for (const Row& row :
       {Row{FirmwareType::None, 0, ""}, Row{FirmwareType::Clp, 1, "IMG_CLP"},
        Row{FirmwareType::Iscsi, 2, "IMG_iSCSI"}, Row{FirmwareType::Pxe, 3, "IMG_PXE"},
        Row{FirmwareType::Uefi, 4, "IMG_UEFI"}, Row{FirmwareType::Fcoe, 5, "IMG_FCoE"}}) {
    EXPECT_EQ(static_cast<int>(row.type), row.number);
    EXPECT_EQ(utils::firmwareTypeName(row.type), row.name);
  }
}

TEST(FirmwareVersion, SplitsACodeRevision) {
  EXPECT_EQ(FirmwareVersion::fromCodeRevision(0x0102), (FirmwareVersion{1, 2}));
  EXPECT_EQ(FirmwareVersion::fromCodeRevision(0xFF00).toString(), "255.0");
}

TEST(FirmwareVersion, IsOrderedByMajorThenMinor) {
  EXPECT_LT((FirmwareVersion{1, 255}), (FirmwareVersion{2, 0}));
  EXPECT_LT((FirmwareVersion{2, 0}), (FirmwareVersion{2, 1}));
  EXPECT_EQ((FirmwareVersion{2, 1}), (FirmwareVersion{2, 1}));
}

}  // namespace
