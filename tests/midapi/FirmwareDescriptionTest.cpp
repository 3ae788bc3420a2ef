#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "midapi/Digest.h"
#include "midapi/FirmwareDescription.h"
#include "tests/support/PldmBuilder.h"
#include "tests/support/RomBuilder.h"

namespace {

using ma::describeFirmware;
using ma::FirmwareComponent;
using ma::FirmwareDescription;
using ma::FirmwareFormat;
using test::Bytes;
using test::PldmBuilder;
using test::PldmDevice;
using test::PldmImage;
using test::RomBuilder;
using test::RomDamage;
using test::RomImage;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using utils::FirmwareType;
using utils::FirmwareVersionInfo;

Bytes twoImages() {
  return RomBuilder()
      .add(RomImage::legacy().version(2, 17))
      .add(RomImage::efi().version(5, 1).deviceList({0x1042, 0x1041}))
      .build();
}

FirmwareDescription described(const PldmBuilder& builder) {
  return describeFirmware(builder.build().bytes);
}

TEST(FirmwareDescription, OfAnOptionRomHasItsImages) {
  const Bytes bytes = twoImages();
  const FirmwareDescription rom = describeFirmware(bytes);
  EXPECT_EQ(rom.format, FirmwareFormat::OptionRom);
  EXPECT_EQ(rom.formatName, "option ROM");
  EXPECT_EQ(rom.size, bytes.size());
  EXPECT_EQ(rom.digest, ma::digestOf(bytes));
  EXPECT_EQ(rom.problem, "");
  EXPECT_EQ(rom.version, "2.17+5.1");
  EXPECT_EQ(rom.releaseTime, "");
  EXPECT_TRUE(rom.tellsDevices);
  EXPECT_THAT(rom.images, ElementsAre(FirmwareVersionInfo{FirmwareType::Pxe, {2, 17}},
                                      FirmwareVersionInfo{FirmwareType::Uefi, {5, 1}}));
  EXPECT_THAT(rom.drivers, ElementsAre("cxgb4"));
  ASSERT_THAT(rom.components, SizeIs(2));
  const FirmwareComponent& efi = rom.components[1];
  EXPECT_EQ(efi.name, "IMG_UEFI");
  EXPECT_EQ(efi.classification, "EFI driver");
  EXPECT_EQ(efi.version, "5.1");
  EXPECT_EQ(efi.size, 1024U);
  EXPECT_EQ(efi.activation, "system reboot");
  EXPECT_THAT(efi.images, ElementsAre(FirmwareVersionInfo{FirmwareType::Uefi, {5, 1}}));
}

TEST(FirmwareDescription, OfAnOptionRomNamesEachDeviceOnce) {
  EXPECT_THAT(describeFirmware(twoImages()).devices, ElementsAre("1af4:1041", "1af4:1042"));
  EXPECT_THAT(describeFirmware(RomBuilder().add(RomImage::efi().device(0x8086, 0)).build()).devices,
              ElementsAre("8086:0000"));
}

TEST(FirmwareDescription, OfAnOptionRomCountsImagesOfNoKnownType) {
  const FirmwareDescription rom = describeFirmware(RomBuilder()
                                                       .add(RomImage::efi().version(5, 1))
                                                       .add(RomImage::ofCodeType(1).version(5, 1))
                                                       .add(RomImage::ofCodeType(9).version(5, 1))
                                                       .build());
  ASSERT_THAT(rom.components, SizeIs(3));
  EXPECT_EQ(rom.components[1].name, "image 1");
  EXPECT_EQ(rom.components[1].classification, "Open Firmware code");
  EXPECT_THAT(rom.components[1].images, IsEmpty());
  EXPECT_EQ(rom.components[2].classification, "code type 0x9");
  EXPECT_EQ(rom.version, "5.1");
  EXPECT_THAT(rom.images, SizeIs(1));
}

TEST(FirmwareDescription, OfADamagedOptionRomSaysWhere) {
  const FirmwareDescription rom =
      describeFirmware(RomBuilder().add(RomImage::efi()).damage(0, RomDamage::ByteSum).build());
  EXPECT_EQ(rom.format, FirmwareFormat::OptionRom);
  EXPECT_THAT(rom.problem, HasSubstr("image 0 at 0x00: byte sum"));
  EXPECT_FALSE(rom.tellsDevices);
  EXPECT_THAT(rom.components, IsEmpty());
}

TEST(FirmwareDescription, OfAPackageHasWhatItsHeaderSays) {
  const PldmBuilder builder = PldmBuilder()
                                  .version({"4.50"})
                                  .add(PldmDevice(0x8086, 0x1592).subsystem(0x8086, 2).takes({0}))
                                  .add(PldmImage(twoImages()).version({"1.3"}).identifier(5))
                                  .add(PldmImage(Bytes(700, 0x11))
                                           .identifier(6)
                                           .version({"7.2.0"})
                                           .classification(11)
                                           .activation(0x28));
  const FirmwareDescription package = described(builder);
  EXPECT_EQ(package.format, FirmwareFormat::PldmPackage);
  EXPECT_EQ(package.formatName, "PLDM firmware package");
  EXPECT_EQ(package.problem, "");
  EXPECT_EQ(package.version, "4.50");
  EXPECT_EQ(package.releaseTime, "2026-11-21T18:04:05Z");
  EXPECT_EQ(package.kernelRefusal, "");
  EXPECT_THAT(package.drivers, Contains("ice"));
  ASSERT_THAT(package.components, SizeIs(2));
  EXPECT_EQ(package.components[0].name, "fw.undi (component 5)");
  EXPECT_EQ(package.components[0].classification, "firmware");
  EXPECT_EQ(package.components[0].version, "1.3");
  EXPECT_EQ(package.components[0].size, twoImages().size());
  EXPECT_THAT(package.components[0].images, SizeIs(2));
  EXPECT_EQ(package.components[1].name, "fw.mgmt (component 6)");
  EXPECT_EQ(package.components[1].classification, "BIOS/FCode");
  EXPECT_EQ(package.components[1].activation, "system reboot, AC power cycle");
  EXPECT_THAT(package.components[1].images, IsEmpty());
  EXPECT_THAT(package.images, ElementsAre(FirmwareVersionInfo{FirmwareType::Pxe, {2, 17}},
                                          FirmwareVersionInfo{FirmwareType::Uefi, {5, 1}}));
}

TEST(FirmwareDescription, OfAPackageHasTheDevicesOfItsRecords) {
  const FirmwareDescription package =
      described(PldmBuilder()
                    .add(PldmDevice(0x8086, 0x1592).subsystem(0x8086, 2))
                    .add(PldmDevice(0x8086, 0x1592))
                    .add(PldmDevice(0x8086, 0x1592))
                    .add(PldmDevice(0x8086, 0x1593).subsystem(0x8086, 0)));
  EXPECT_THAT(package.devices,
              ElementsAre("8086:1592 sub 8086:0002", "8086:1592", "8086:1593 sub 8086:any"));
  EXPECT_TRUE(package.tellsDevices);
}

TEST(FirmwareDescription, OfAPackageSaysWhereARecordNamesNoDevice) {
  const FirmwareDescription package = described(
      PldmBuilder().add(PldmDevice(0x8086, 0x1592)).add(PldmDevice(0x8086, 0)).add(PldmDevice()));
  EXPECT_THAT(package.devices, ElementsAre("8086:1592", "8086:any", "any"));
  EXPECT_FALSE(package.tellsDevices);
}

TEST(FirmwareDescription, OfAPackageSaysWhetherItsComponentsHaveAChecksum) {
  for (std::uint8_t format = 1; format < 4; ++format) {
    EXPECT_EQ(described(PldmBuilder(format)).protectsComponents, false) << int{format};
  }
  EXPECT_EQ(described(PldmBuilder(4)).protectsComponents, true);
  EXPECT_EQ(describeFirmware(twoImages()).protectsComponents, std::nullopt);
}

TEST(FirmwareDescription, OfAPackageSaysWhyTheKernelRefusesIt) {
  EXPECT_THAT(described(PldmBuilder(4).add(PldmDevice(0x8086, 0x1592))).kernelRefusal,
              HasSubstr("format 4"));
}

TEST(FirmwareDescription, OfADamagedPackageSaysWhere) {
  PldmBuilder builder;
  builder.add(PldmDevice(0x8086, 0x1592)).add(PldmImage(Bytes(700, 0x11)));
  Bytes bytes = builder.build().bytes;
  bytes[0x15] ^= 1U;
  const FirmwareDescription package = describeFirmware(bytes);
  EXPECT_EQ(package.format, FirmwareFormat::PldmPackage);
  EXPECT_THAT(package.problem, HasSubstr("hecksum"));
  EXPECT_THAT(package.devices, IsEmpty());
  EXPECT_THAT(package.drivers, Contains("ice"));
}

TEST(FirmwareDescription, OfAPackageWithADamagedRomSaysWhere) {
  const test::PldmFile file =
      PldmBuilder()
          .add(PldmImage(Bytes(700, 0x11)))
          .add(PldmImage(RomBuilder().add(RomImage::efi()).damage(0, RomDamage::ByteSum).build())
                   .identifier(7))
          .build();
  const FirmwareDescription package = describeFirmware(file.bytes);
  EXPECT_THAT(package.problem, HasSubstr("component 7 at 0x"));
  EXPECT_THAT(package.problem, HasSubstr(" is a damaged option ROM: image 0 at 0x00: byte sum"));
  EXPECT_THAT(package.components, IsEmpty());
}

TEST(FirmwareDescription, OfAContainerHasItsDriversAlone) {
  const std::string mark = "MLNX.MFA2.XZ.00!";
  Bytes bytes(mark.begin(), mark.end());
  bytes.resize(4096);
  const FirmwareDescription container = describeFirmware(bytes);
  EXPECT_EQ(container.formatName, "MFA2 container");
  EXPECT_THAT(container.drivers, Contains("mlx5_core"));
  EXPECT_FALSE(container.tellsDevices);
  EXPECT_EQ(container.problem, "");
  EXPECT_THAT(container.components, IsEmpty());
}

TEST(FirmwareDescription, OfOtherBytesSaysThatTheyAreUnknown) {
  const FirmwareDescription unknown = describeFirmware(Bytes(100, 0x2A));
  EXPECT_EQ(unknown.format, FirmwareFormat::Unknown);
  EXPECT_EQ(unknown.formatName, "unknown format");
  EXPECT_EQ(unknown.problem, "");
  EXPECT_FALSE(unknown.tellsDevices);
  EXPECT_EQ(describeFirmware({}).problem, "the file is empty");
}

TEST(FirmwareDescription, ListsNoMoreDevicesThanItMay) {
  constexpr std::size_t kMost = FirmwareDescription::kMostListed;
  std::vector<std::uint16_t> devices;
  for (std::size_t index = 1; index <= kMost; ++index) {
    devices.push_back(static_cast<std::uint16_t>(index));
  }
  const auto romFor = [&devices](std::uint16_t device) {
    return describeFirmware(
        RomBuilder()
            .add(RomImage::efi().device(0x8086, device).deviceList(devices).units(16))
            .build());
  };
  const FirmwareDescription full = romFor(1);
  EXPECT_THAT(full.devices, SizeIs(kMost));
  EXPECT_FALSE(full.hasMoreDevices);
  const FirmwareDescription more = romFor(0x2000);
  EXPECT_THAT(more.devices, SizeIs(kMost));
  EXPECT_TRUE(more.hasMoreDevices);
}

TEST(FirmwareDescription, ListsNoMoreComponentsThanItMay) {
  constexpr std::size_t kMost = FirmwareDescription::kMostListed;
  RomBuilder rom;
  for (std::size_t index = 0; index < kMost; ++index) {
    rom.add(RomImage::efi().units(1));
  }
  EXPECT_FALSE(describeFirmware(rom.build()).hasMoreComponents);
  rom.add(RomImage::legacy().version(7, 7));
  const FirmwareDescription more = describeFirmware(rom.build());
  EXPECT_THAT(more.components, SizeIs(kMost));
  EXPECT_TRUE(more.hasMoreComponents);
  EXPECT_EQ(more.version, "1.0+7.7");
}

}  // namespace
