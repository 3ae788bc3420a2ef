#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/JsonOutput.h"
#include "cli/ShownFirmware.h"

namespace {

using cli::ShownFirmware;
using Json = nlohmann::ordered_json;
using testing::HasSubstr;
using utils::FirmwareType;
using utils::FirmwareVersionInfo;

const std::vector<FirmwareVersionInfo> kPxe = {{FirmwareType::Pxe, {1, 1}}};

ShownFirmware package() {
  ShownFirmware firmware;
  firmware.file = "/srv/a.pldm";
  ma::FirmwareDescription& file = firmware.description;
  file.format = ma::FirmwareFormat::PldmPackage;
  file.formatName = "PLDM firmware package";
  file.size = 80063;
  file.digest = 0xABC;
  file.version = "4.50";
  file.releaseTime = "2026-11-21T18:04:05Z";
  file.tellsDevices = true;
  file.devices = {"8086:1592 sub 8086:0002", "8086:1593"};
  file.components = {{"component 5", "firmware", "1.1.0", 75776, "system reboot", kPxe},
                     {"component 6", "firmware", "7.2.0", 4096, "", {}}};
  file.images = kPxe;
  file.drivers = {"ice"};
  firmware.adapters = {{"0000:3b:00", "NX2", ma::ImageComparison::Newer, ""},
                       {"0000:5e:00", "", ma::ImageComparison::NotForAdapter, "it is for others"}};
  return firmware;
}

std::string printed(const ShownFirmware& firmware) {
  std::ostringstream out;
  cli::printFirmware(out, firmware);
  return out.str();
}

TEST(ShownFirmware, TellsWhatAFileIsAndWhatItWouldMean) {
  EXPECT_EQ(printed(package()),
            "/srv/a.pldm\n"
            "  format       PLDM firmware package\n"
            "  version      4.50\n"
            "  released     2026-11-21T18:04:05Z\n"
            "  size         80063 bytes\n"
            "  digest       0000000000000abc\n"
            "  devices      8086:1592 sub 8086:0002, 8086:1593\n"
            "  image types  IMG_PXE\n"
            "  drivers      ice\n"
            "\n"
            "COMPONENT    VERSION  BYTES  KIND      IMAGES       TAKES EFFECT BY\n"
            "component 5  1.1.0    75776  firmware  IMG_PXE 1.1  system reboot\n"
            "component 6  7.2.0    4096   firmware\n"
            "\n"
            "ADAPTER     STATE       NAME\n"
            "0000:3b:00  newer       NX2\n"
            "0000:5e:00  not for it\n"
            "\n"
            "Reasons:\n"
            "  0000:5e:00: it is for others\n");
}

TEST(ShownFirmware, TellsWhatIsWrongWithAFile) {
  ShownFirmware firmware;
  firmware.file = "a\x1b.rom";
  firmware.description.formatName = "option ROM";
  firmware.description.problem = "image 0 at 0x00: byte sum is 0x1, must be 0";
  EXPECT_EQ(printed(firmware),
            "a\\x1b.rom\n"
            "  format       option ROM\n"
            "  damaged      image 0 at 0x00: byte sum is 0x1, must be 0\n"
            "  size         0 bytes\n"
            "  digest       0000000000000000\n"
            "\n"
            "There are no adapters to compare it with.\n");
}

TEST(ShownFirmware, SaysWhereAFileDoesNotSayItsDevices) {
  ShownFirmware firmware = package();
  firmware.description.tellsDevices = false;
  firmware.description.devices = {"any"};
  EXPECT_THAT(printed(firmware),
              HasSubstr("  devices      any\n"
                        "               the file does not say which devices it is for\n"));
  firmware.description.devices.clear();
  EXPECT_THAT(printed(firmware),
              HasSubstr("\n  devices      the file does not say which devices it is for\n"));
}

TEST(ShownFirmware, SaysWhyTheKernelRefusesAPackage) {
  ShownFirmware firmware = package();
  firmware.description.kernelRefusal = "the package has format 4";
  EXPECT_THAT(printed(firmware),
              HasSubstr("  kernel       refuses it: the package has format 4\n"));
}

TEST(ShownFirmware, SaysWhatTheChecksumOfAPackageIsOf) {
  ShownFirmware firmware = package();
  EXPECT_THAT(printed(firmware), testing::Not(HasSubstr("checksum")));
  firmware.description.protectsComponents = false;
  EXPECT_THAT(
      printed(firmware),
      HasSubstr("\n  checksum     of the header alone: compare the file with what its maker "
                "tells\n"));
  firmware.description.protectsComponents = true;
  EXPECT_THAT(printed(firmware), HasSubstr("\n  checksum     of the whole package\n"));
  EXPECT_THAT(cli::toJsonLine(cli::toJson(firmware)), HasSubstr("\"protectsComponents\":true"));
}

TEST(ShownFirmware, ShowsSomeDevicesALine) {
  ShownFirmware firmware = package();
  firmware.description.devices.assign(6, "8086:1592");
  EXPECT_THAT(printed(firmware),
              HasSubstr("  devices      8086:1592, 8086:1592, 8086:1592, 8086:1592\n"
                        "               8086:1592, 8086:1592\n"
                        "  image types"));
  firmware.description.devices.assign(20, "8086:1592");
  EXPECT_THAT(printed(firmware), HasSubstr("\n               and 4 more (--json lists them)\n"));
  firmware.description.hasMoreDevices = true;
  EXPECT_THAT(printed(firmware), HasSubstr("and more than 4 more (--json lists them)\n"));
}

TEST(ShownFirmware, DoesNotRepeatTheTypeOfAnImage) {
  ShownFirmware firmware = package();
  firmware.description.components = {
      {"IMG_PXE", "PC BIOS code", "1.1", 1024, "system reboot", kPxe}};
  EXPECT_THAT(printed(firmware),
              HasSubstr("COMPONENT  VERSION  BYTES  KIND          TAKES EFFECT BY\n"
                        "IMG_PXE    1.1      1024   PC BIOS code  system reboot\n"));
}

TEST(ShownFirmware, SaysThatDriversOfAnUnknownFormatAreNotKnownByIt) {
  ShownFirmware firmware;
  firmware.description.drivers = {"bna", "nfp"};
  EXPECT_THAT(printed(firmware),
              HasSubstr("  drivers      bna, nfp (their files cannot be told from others)\n"));
}

TEST(ShownFirmware, SaysThatThereAreMoreComponents) {
  ShownFirmware firmware = package();
  firmware.description.hasMoreComponents = true;
  EXPECT_THAT(printed(firmware), HasSubstr("7.2.0    4096   firmware\nand more\n"));
}

TEST(ShownFirmware, IsADocumentForPrograms) {
  EXPECT_EQ(Json::parse(cli::toJsonLine(cli::toJson(package()))), Json::parse(R"({
    "file": "/srv/a.pldm", "format": "PLDM firmware package", "problem": null, "version": "4.50",
    "released": "2026-11-21T18:04:05Z", "size": 80063, "digest": "0000000000000abc",
    "tellsDevices": true, "devices": ["8086:1592 sub 8086:0002", "8086:1593"],
    "hasMoreDevices": false, "types": ["IMG_PXE"],
    "components": [
      {"name": "component 5", "classification": "firmware", "version": "1.1.0", "size": 75776,
       "activation": "system reboot", "images": [{"type": "IMG_PXE", "version": "1.1"}]},
      {"name": "component 6", "classification": "firmware", "version": "7.2.0", "size": 4096,
       "activation": null, "images": []}],
    "hasMoreComponents": false, "drivers": ["ice"], "protectsComponents": null,
    "kernelRefusal": null,
    "adapters": [
      {"adapter": "0000:3b:00", "name": "NX2", "state": "newer", "reason": null},
      {"adapter": "0000:5e:00", "name": null, "state": "not for it",
       "reason": "it is for others"}]})"));
}

}  // namespace
