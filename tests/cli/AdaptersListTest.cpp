#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/AdaptersList.h"
#include "cli/JsonOutput.h"

namespace {

using Json = nlohmann::ordered_json;
using ma::AdapterKind;
using ma::AdapterList;
using ma::AdapterListing;
using ma::AdapterPort;
using testing::HasSubstr;
using utils::FirmwareType;

AdapterPort port(const std::string& identifier, std::vector<std::string> interfaces = {}) {
  return {identifier, "52:54:00:12:34:56", ma::BootType::None, std::move(interfaces)};
}

AdapterListing virtualAdapter() {
  AdapterListing adapter;
  adapter.pci = "0000:90:00";
  adapter.name = "Lab adapter";
  adapter.vendor = 0x1AF4;
  adapter.device = 0x1041;
  adapter.ports = {port("0000:90:00.0")};
  adapter.components = {
      {FirmwareType::Pxe, {1, 0}, 0x1AF4, 0x1041, true, 0, 1024, 0xABCDEF0112345678}};
  adapter.isUpdatable = true;
  adapter.writeRate = 4096;
  adapter.capabilityWord = 8;
  return adapter;
}

AdapterListing twoPorts() {
  AdapterListing adapter;
  adapter.kind = AdapterKind::Kernel;
  adapter.pci = "0000:3b:00";
  adapter.name = "Kestrel NX2 Ethernet Adapter";
  adapter.vendor = 0x8086;
  adapter.device = 0x1592;
  adapter.ports = {port("0000:3b:00.0", {"ens1f0"}), port("0000:3b:00.1", {"ens1f1", "ens1f1d1"})};
  adapter.isUpdatable = true;
  adapter.driver = "ice";
  adapter.partNumber = "K12345-001";
  adapter.serialNumber = "00-01-00-ff-ff-b4-ca-60";
  adapter.versions = {{"fw.mgmt", "7.1.0", ""}, {"fw.undi", "1.0.0", "1.1.0"}};
  return adapter;
}

AdapterListing onePort(const std::string& pci) {
  AdapterListing adapter;
  adapter.kind = AdapterKind::Kernel;
  adapter.pci = pci;
  adapter.vendor = 0x8086;
  adapter.device = 0x10D3;
  adapter.ports = {port(pci + ".0")};
  adapter.driver = "e1000e";
  adapter.whyNotUpdatable = "no way is known by which its driver e1000e writes firmware";
  return adapter;
}

std::string printed(const AdapterList& list) {
  std::ostringstream out;
  cli::printAdapters(out, list);
  return out.str();
}

std::string warned(const AdapterList& list) {
  std::ostringstream err;
  cli::warnAboutAdapters(err, list);
  return err.str();
}

Json document(const AdapterListing& adapter) {
  return Json::parse(cli::toJsonLine(cli::toJson(adapter)));
}

TEST(AdaptersList, IsOneTableWhereAllAreVirtual) {
  EXPECT_EQ(printed({{virtualAdapter()}, {}}),
            "PORT          ADAPTER     NAME         DEVICE     BOOT  UPDATABLE  FIRMWARE\n"
            "0000:90:00.0  0000:90:00  Lab adapter  1af4:1041  none  yes        IMG_PXE 1.0 "
            "(abcdef01)\n");
}

TEST(AdaptersList, HasABlockForEachAdapterBelowThePortsOfTheKernelsAdapters) {
  EXPECT_EQ(printed({{twoPorts(), virtualAdapter()}, {}}),
            "PORT          INTERFACE        DRIVER   DEVICE     UPDATABLE\n"
            "0000:3b:00.0  ens1f0           ice      8086:1592  yes\n"
            "0000:3b:00.1  ens1f1,ens1f1d1  ice      8086:1592  yes\n"
            "0000:90:00.0  -                virtual  1af4:1041  yes\n"
            "\n"
            "ADAPTER     IDENTITY AND FIRMWARE\n"
            "0000:3b:00  Kestrel NX2 Ethernet Adapter\n"
            "            part number K12345-001\n"
            "            serial number 00-01-00-ff-ff-b4-ca-60\n"
            "            fw.mgmt 7.1.0\n"
            "            fw.undi 1.0.0, stored 1.1.0\n"
            "0000:90:00  Lab adapter\n"
            "            IMG_PXE 1.0 (abcdef01)\n"
            "\n"
            "Notes:\n"
            "  0000:3b:00: 'quorvel activate' puts stored firmware into force, or says what that "
            "takes\n");
}

TEST(AdaptersList, SaysBelowOnceWhyAdaptersAreNotUpdatable) {
  EXPECT_EQ(
      printed({{onePort("0000:03:00"), onePort("0000:04:00")}, {}}),
      "PORT          INTERFACE  DRIVER  DEVICE     UPDATABLE\n"
      "0000:03:00.0  -          e1000e  8086:10d3  no\n"
      "0000:04:00.0  -          e1000e  8086:10d3  no\n"
      "\n"
      "ADAPTER     IDENTITY AND FIRMWARE\n"
      "0000:03:00  firmware not known\n"
      "0000:04:00  firmware not known\n"
      "\n"
      "Not updatable:\n"
      "  0000:03:00, 0000:04:00: no way is known by which its driver e1000e writes firmware\n");
}

TEST(AdaptersList, MarksAnAdapterThatIsBeingWritten) {
  AdapterListing adapter = twoPorts();
  adapter.isBeingWritten = true;
  adapter.versions = {{"fw", "1.0", "1.0"}};
  const std::string text = printed({{adapter}, {}});
  EXPECT_THAT(text, HasSubstr("8086:1592  being written\n"));
  EXPECT_THAT(text, HasSubstr("Notes:\n  0000:3b:00: its flash is being written, and this is what "
                              "was known before\n"));
}

TEST(AdaptersList, HasNotesOfAdapters) {
  AdapterListing adapter = twoPorts();
  adapter.versions.clear();
  adapter.notes = {"not readable without root: its option ROM", "a\x1b[31m"};
  const std::string text = printed({{adapter}, {}});
  EXPECT_THAT(text, HasSubstr("  0000:3b:00: not readable without root: its option ROM\n"));
  EXPECT_THAT(text, HasSubstr("  0000:3b:00: a\\x1b[31m\n"));
}

TEST(AdaptersList, HasImagesOfTheOptionRomBelowTheVersions) {
  AdapterListing adapter = twoPorts();
  adapter.versions = {{"fw", "1.0", ""}};
  adapter.components = virtualAdapter().components;
  EXPECT_THAT(printed({{adapter}, {}}), HasSubstr("            fw 1.0\n"
                                                  "            IMG_PXE 1.0 (abcdef01)\n"));
  adapter.flashDefect = "image 0 at 0x00: byte sum";
  EXPECT_THAT(printed({{adapter}, {}}), HasSubstr("  option ROM damaged\n"));
}

TEST(AdaptersList, WarnsAboutWhatIsPassedOverAndWhatIsListed) {
  const AdapterList list{{twoPorts()},
                         {{"/dir/0000-04-00", "no description", "repair it"},
                          {"0000:3b:00", "an update was interrupted", "update it again"}}};
  EXPECT_EQ(warned(list),
            "quorvel: warning: /dir/0000-04-00 is passed over: no description\n  next: repair it\n"
            "quorvel: warning: 0000:3b:00: an update was interrupted\n  next: update it again\n");
}

TEST(AdaptersList, WarnsAboutADamagedFlash) {
  AdapterListing defective = virtualAdapter();
  defective.flashDefect = "no signature";
  EXPECT_EQ(warned({{defective}, {}}),
            "quorvel: warning: the flash of 0000:90:00 holds no valid images: no signature\n"
            "  next: install firmware with 'quorvel update'\n");
  AdapterListing kernels = onePort("0000:03:00");
  kernels.flashDefect = "no signature";
  EXPECT_EQ(warned({{kernels}, {}}),
            "quorvel: warning: the option ROM of 0000:03:00 holds no valid images: no signature\n");
}

TEST(AdaptersList, HasAllOfAKernelsAdapterForPrograms) {
  AdapterListing adapter = twoPorts();
  adapter.notes = {"a note"};
  const Json json = document(adapter);
  EXPECT_EQ(json["pci"], "0000:3b:00");
  EXPECT_EQ(json["kind"], "kernel");
  EXPECT_EQ(json["driver"], "ice");
  EXPECT_EQ(json["partNumber"], "K12345-001");
  EXPECT_EQ(json["serialNumber"], "00-01-00-ff-ff-b4-ca-60");
  EXPECT_EQ(json["ports"][1], Json::parse(R"({"identifier": "0000:3b:00.1",
      "mac": "52:54:00:12:34:56", "interfaces": ["ens1f1", "ens1f1d1"]})"));
  EXPECT_EQ(json["versions"], Json::parse(R"([
      {"name": "fw.mgmt", "running": "7.1.0", "stored": null},
      {"name": "fw.undi", "running": "1.0.0", "stored": "1.1.0"}])"));
  EXPECT_EQ(json["updatable"], true);
  EXPECT_EQ(json["whyNotUpdatable"], nullptr);
  EXPECT_EQ(json["isBeingWritten"], false);
  EXPECT_EQ(json["notes"], Json::parse(R"(["a note"])"));
  EXPECT_FALSE(json.contains("writeRate"));
}

TEST(AdaptersList, HasNothingForProgramsInThePlaceOfWhatIsNotKnown) {
  const Json json = document(onePort("0000:03:00"));
  EXPECT_EQ(json["name"], nullptr);
  EXPECT_EQ(json["serialNumber"], nullptr);
  EXPECT_EQ(json["versions"], Json::array());
  EXPECT_EQ(json["whyNotUpdatable"], "no way is known by which its driver e1000e writes firmware");
}

TEST(AdaptersList, KeepsTheDocumentOfVirtualAdapters) {
  EXPECT_EQ(document(virtualAdapter()), Json::parse(R"({
      "pci": "0000:90:00", "kind": "virtual", "name": "Lab adapter", "vendorId": "1af4",
      "deviceId": "1041", "updatable": true,
      "ports": [{"identifier": "0000:90:00.0", "mac": "52:54:00:12:34:56", "bootType": "none"}],
      "components": [{"type": "IMG_PXE", "version": "1.0", "vendorId": "1af4", "deviceId": "1041",
        "forAdapter": true, "length": 1024, "digest": "abcdef0112345678"}],
      "flashDefect": null, "flashBytes": 0, "writeRate": 4096, "capabilityWord": 8})"));
}

}  // namespace
