#include <algorithm>
#include <gmock/gmock.h>
#include <set>
#include <string>

#include "midapi/FirmwareFormat.h"
#include "tests/support/PldmBuilder.h"
#include "tests/support/RomBuilder.h"

namespace {

using ma::driversOf;
using ma::FirmwareFormat;
using ma::firmwareFormatOf;
using test::Bytes;
using testing::Contains;

constexpr FirmwareFormat kFormats[] = {
    FirmwareFormat::Unknown, FirmwareFormat::OptionRom, FirmwareFormat::PldmPackage,
    FirmwareFormat::Mfa2,    FirmwareFormat::BnxtPart,  FirmwareFormat::Hinic,
    FirmwareFormat::QedNvm,
};

// Returns a file of that size with the mark in its place.
Bytes fileWith(const std::string& mark, std::size_t offset = 0, std::size_t size = 2048) {
  Bytes file(size, 0x5A);
  for (std::size_t at = 0; at < mark.size() && offset + at < size; ++at) {
    file[offset + at] = static_cast<std::uint8_t>(mark[at]);
  }
  return file;
}

TEST(FirmwareFormat, IsToldByTheContent) {
  EXPECT_EQ(firmwareFormatOf(test::RomBuilder().add(test::RomImage::efi()).build()),
            FirmwareFormat::OptionRom);
  for (std::uint8_t format = 1; format <= 4; ++format) {
    EXPECT_EQ(firmwareFormatOf(test::PldmBuilder(format).build().bytes),
              FirmwareFormat::PldmPackage);
  }
  EXPECT_EQ(firmwareFormatOf(fileWith("MLNX.MFA2.XZ.00!")), FirmwareFormat::Mfa2);
  EXPECT_EQ(firmwareFormatOf(fileWith("BCM\x1A")), FirmwareFormat::BnxtPart);
  EXPECT_EQ(firmwareFormatOf(fileWith({"\x00\x11\x22\x18", 4}, 8)), FirmwareFormat::Hinic);
  EXPECT_EQ(firmwareFormatOf(fileWith("\x87\x56\x43\x12")), FirmwareFormat::QedNvm);
}

TEST(FirmwareFormat, IsThatOfADefectiveFile) {
  EXPECT_EQ(firmwareFormatOf(Bytes({0x55, 0xAA})), FirmwareFormat::OptionRom);
  Bytes package = test::PldmBuilder(1).build().bytes;
  package.resize(16);
  EXPECT_EQ(firmwareFormatOf(package), FirmwareFormat::PldmPackage);
}

TEST(FirmwareFormat, IsThatOfTheSmallestFileWithTheMark) {
  EXPECT_EQ(firmwareFormatOf(fileWith("MLNX.MFA2.XZ.00!", 0, 16)), FirmwareFormat::Mfa2);
  EXPECT_EQ(firmwareFormatOf(fileWith("BCM\x1A", 0, 28)), FirmwareFormat::BnxtPart);
  EXPECT_EQ(firmwareFormatOf(fileWith({"\x00\x11\x22\x18", 4}, 8, 1024)), FirmwareFormat::Hinic);
  EXPECT_EQ(firmwareFormatOf(fileWith("\x87\x56\x43\x12", 0, 12)), FirmwareFormat::QedNvm);
  EXPECT_EQ(firmwareFormatOf(fileWith("\x87\x56\x43\x12", 0, 11)), FirmwareFormat::Unknown);
}

TEST(FirmwareFormat, IsUnknownWithoutTheWholeMark) {
  EXPECT_EQ(firmwareFormatOf({}), FirmwareFormat::Unknown);
  EXPECT_EQ(firmwareFormatOf(Bytes({0x55})), FirmwareFormat::Unknown);
  EXPECT_EQ(firmwareFormatOf(Bytes(4096, 0xFF)), FirmwareFormat::Unknown);
  EXPECT_EQ(firmwareFormatOf(fileWith("MLNX.MFA2.XZ.01!")), FirmwareFormat::Unknown);
  EXPECT_EQ(firmwareFormatOf(fileWith("MLNX.MFA2.XZ.00!", 0, 15)), FirmwareFormat::Unknown);
  EXPECT_EQ(firmwareFormatOf(fileWith("MLNX.MFA2.XZ.00!", 1)), FirmwareFormat::Unknown);
  EXPECT_EQ(firmwareFormatOf(fileWith({"\x00\x11\x22\x18", 4})), FirmwareFormat::Unknown);
  EXPECT_EQ(firmwareFormatOf(fileWith({"\x00\x11\x22\x18", 4}, 8, 1023)), FirmwareFormat::Unknown);
  EXPECT_EQ(firmwareFormatOf(fileWith("BCM\x1A", 0, 27)), FirmwareFormat::Unknown);
}

TEST(FirmwareFormat, HasANameOfItsOwn) {
  std::set<std::string_view> names;
  for (const FirmwareFormat format : kFormats) {
    EXPECT_TRUE(names.insert(ma::nameOf(format)).second) << ma::nameOf(format);
  }
  EXPECT_EQ(ma::nameOf(FirmwareFormat::PldmPackage), "PLDM firmware package");
  EXPECT_EQ(ma::nameOf(FirmwareFormat::QedNvm), "qed NVM image");
}

TEST(FirmwareFormat, KnowsTheDriversThatTakeIt) {
  EXPECT_THAT(driversOf(FirmwareFormat::OptionRom), Contains("cxgb4"));
  EXPECT_THAT(driversOf(FirmwareFormat::PldmPackage), Contains("ice"));
  EXPECT_THAT(driversOf(FirmwareFormat::Mfa2), Contains("mlx5_core"));
  EXPECT_THAT(driversOf(FirmwareFormat::BnxtPart), Contains("bnxt_en"));
  EXPECT_THAT(driversOf(FirmwareFormat::Hinic), Contains("hinic"));
  EXPECT_THAT(driversOf(FirmwareFormat::QedNvm), Contains("qede"));
  EXPECT_THAT(driversOf(FirmwareFormat::Unknown), Contains("ionic"));
  for (const FirmwareFormat format : kFormats) {
    const auto drivers = driversOf(format);
    EXPECT_EQ(std::count(drivers.begin(), drivers.end(), "i40e"), 0);
    EXPECT_EQ(ma::tellsDevices(format),
              format == FirmwareFormat::OptionRom || format == FirmwareFormat::PldmPackage);
  }
}

}  // namespace
