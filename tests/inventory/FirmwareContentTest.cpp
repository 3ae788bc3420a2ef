#include <gmock/gmock.h>
#include <string>

#include "core/FirmwareReader.h"
#include "inventory/FirmwareContent.h"
#include "inventory/SoftwareInventoryAgent.h"
#include "tests/inventory/InventoryFixture.h"
#include "tests/support/PldmBuilder.h"

namespace {

using inventory::describeContent;
using test::RomBuilder;
using test::RomImage;

TEST(FirmwareContent, IsTheVersionOfTheFirstImageOfEachKnownType) {
  EXPECT_EQ(describeContent(RomBuilder()
                                .add(RomImage::legacy().version(0, 2))
                                .add(RomImage::efi().version(1, 3))
                                .add(RomImage::efi().version(1, 4))
                                .build()),
            "IMG_PXE 0.2, IMG_UEFI 1.3");
}

TEST(FirmwareContent, OfAPackageIsItsVersionAndItsOptionRoms) {
  const auto package = [](const test::Bytes& component) {
    return test::PldmBuilder()
        .version({"2026.11"})
        .add(test::PldmDevice(0x8086, 0x1592).takes({0}))
        .add(test::PldmImage(component))
        .build()
        .bytes;
  };
  EXPECT_EQ(describeContent(package(RomBuilder().add(RomImage::efi().version(1, 3)).build())),
            "2026.11 (IMG_UEFI 1.3)");
  EXPECT_EQ(describeContent(package({1, 2, 3})), "2026.11");
}

TEST(FirmwareContent, IsNothingWhereThereIsNoFirmware) {
  EXPECT_EQ(describeContent({}), "");
  EXPECT_EQ(describeContent(test::Bytes(1000, 0x55)), "");
}

TEST(FirmwareContent, IsWhatTheAgentTells) {
  const inventory::SoftwareInventoryAgent agent;
  const core::CimAgent& known = agent;
  const auto* reader = dynamic_cast<const core::FirmwareReader*>(&known);
  ASSERT_NE(reader, nullptr);
  EXPECT_EQ(reader->describeFirmware(RomBuilder().add(RomImage::efi().version(1, 3)).build()),
            "IMG_UEFI 1.3");
}

}  // namespace
