#include <gmock/gmock.h>

#include "inventory/Orvex_SoftwareIdentityClass.h"
#include "tests/inventory/InventoryFixture.h"
#include "tests/support/PldmBuilder.h"
#include "tests/support/Regex.h"

namespace {

using inventory::AdapterSoftware;
using test::kAdapter;
using test::kOtherAdapter;
using test::PldmBuilder;
using test::PldmDevice;
using test::PldmImage;
using test::RomBuilder;
using test::RomImage;
using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;

class SoftwareIdentityClass : public test::InventoryFixture {
 protected:
  std::vector<AdapterSoftware*> identities() { return enumerate<AdapterSoftware>(m_provider); }

  // Returns the one identity, that of a file with this content.
  AdapterSoftware& identityOf(const test::Bytes& content) {
    makeFile("first/image.rom", content);
    return *identities().at(0);
  }

  inventory::FirmwareFiles m_files;
  Orvex_SoftwareIdentityClass m_provider{m_files};
};

TEST_F(SoftwareIdentityClass, ServesTheFilesThenTheInstalledComponents) {
  EXPECT_EQ(m_provider.getName(), "Orvex_SoftwareIdentity");
  m_adapters.makeAdapter(kOtherAdapter, RomBuilder().add(RomImage::efi()).build());
  m_adapters.makeAdapter(kAdapter, firmware(2));
  const std::string path = makeFile("first/image.rom", firmware(3));

  std::vector<std::string> names;
  for (const AdapterSoftware* software : identities()) {
    names.push_back(software->InstanceID.getValue());
  }
  EXPECT_THAT(
      names,
      ElementsAre("Orvex:FirmwareFile:" + path, "Orvex:InstalledFirmware:0000:03:00/0",
                  "Orvex:InstalledFirmware:0000:03:00/1", "Orvex:InstalledFirmware:0000:04:00/0"));
  EXPECT_THAT(m_log.messages("Orvex_SoftwareIdentityClass::getInstances"),
              ElementsAre("getInstances", "return 4"));
}

TEST_F(SoftwareIdentityClass, DescribesAFile) {
  const std::string path = makeFile("first/image.rom", firmware(3));
  AdapterSoftware& file = *identities().at(0);

  EXPECT_EQ(file.getIdentity(), path);
  EXPECT_EQ(file.getImageKind(), 4u);
  EXPECT_EQ(file.ImageKind.getValue(), 4u);
  EXPECT_EQ(file.getPath(),
            "Orvex_SoftwareIdentity.InstanceID=\"Orvex:FirmwareFile:" + path + "\"");
  EXPECT_EQ(file.Name.getValue(), path);
  EXPECT_EQ(file.Caption.getValue(), "Firmware image image.rom");
  EXPECT_EQ(file.VersionString.getValue(), "3.0");
  EXPECT_THAT(file.TargetTypes.getValue(), ElementsAre("IMG_PXE", "IMG_UEFI"));
  EXPECT_THAT(file.Classifications.getValue(), ElementsAre(10));
  EXPECT_THAT(file.IdentityInfoType.getValue(), ElementsAre("Orvex:PCIDevice", "Orvex:Digest"));
  EXPECT_THAT(file.IdentityInfoValue.getValue(),
              ElementsAre("1af4:1041", test::MatchesRegex("[0-9a-f]+")));
  EXPECT_EQ(file.MajorVersion.getValue(), 3);
  EXPECT_EQ(file.MinorVersion.getValue(), 0);
  EXPECT_TRUE(file.RevisionNumber.isNull());
  EXPECT_EQ(file.IsEntity.getValue(), 1);
  EXPECT_EQ(file.ExtendedResourceType.getValue(), 2);
  EXPECT_TRUE(file.ReleaseDate.isNull());
  EXPECT_TRUE(file.Manufacturer.isNull());
}

TEST_F(SoftwareIdentityClass, NamesEachTypeAndDeviceOfAFileOnce) {
  const AdapterSoftware& file =
      identityOf(RomBuilder()
                     .add(RomImage::efi().version(1, 2))
                     .add(RomImage::efi().version(1, 3).device(1, 2))
                     .add(RomImage::legacy().version(1, 4).deviceList({5}))
                     .build());
  EXPECT_THAT(file.TargetTypes.getValue(), ElementsAre("IMG_UEFI", "IMG_PXE"));
  EXPECT_EQ(file.VersionString.getValue(), "1.2+1.4");
  EXPECT_THAT(file.IdentityInfoValue.getValue(),
              ElementsAre("1af4:1041", "0001:0002", "1af4:0005", _));
  EXPECT_THAT(file.IdentityInfoType.getValue(),
              ElementsAre("Orvex:PCIDevice", "Orvex:PCIDevice", "Orvex:PCIDevice", "Orvex:Digest"));
  EXPECT_TRUE(file.MajorVersion.isNull());
}

TEST_F(SoftwareIdentityClass, DescribesAPackage) {
  const AdapterSoftware& file =
      identityOf(PldmBuilder()
                     .version({"2026.11"})
                     .add(PldmDevice(0x8086, 0x1592).subsystem(0x8086, 2).takes({0, 1}))
                     .add(PldmImage(firmware(3)).version({"1.1.0"}))
                     .add(PldmImage({1, 2, 3}).identifier(6).version({"7.2.0"}))
                     .build()
                     .bytes);
  EXPECT_EQ(file.VersionString.getValue(), "2026.11");
  EXPECT_THAT(file.TargetTypes.getValue(), ElementsAre("IMG_PXE", "IMG_UEFI"));
  EXPECT_EQ(file.MajorVersion.getValue(), 2026);
  // 2026-11-21T18:04:05Z, as the builder has it.
  EXPECT_EQ(file.ReleaseDate.getValue().value, 1'795'284'245'000'000U);
  EXPECT_THAT(file.IdentityInfoType.getValue(), ElementsAre("Orvex:PCIDevice", "Orvex:Digest"));
  EXPECT_THAT(file.IdentityInfoValue.getValue(), ElementsAre("8086:1592 sub 8086:0002", _));
}

TEST_F(SoftwareIdentityClass, HasNoTargetTypesForImagesOfUnknownTypes) {
  const AdapterSoftware& file =
      identityOf(RomBuilder().add(RomImage::ofCodeType(1).version(2, 7)).build());
  EXPECT_THAT(file.TargetTypes.getValue(), IsEmpty());
  EXPECT_EQ(file.VersionString.getValue(), "2.7");
}

TEST_F(SoftwareIdentityClass, DescribesAnInstalledComponent) {
  m_adapters.makeAdapter(kAdapter, firmware(2));
  AdapterSoftware& component = *identities().at(1);

  EXPECT_EQ(component.getIdentity(), "0000:03:00/1");
  EXPECT_EQ(component.getImageKind(), 2u);
  EXPECT_EQ(component.ImageKind.getValue(), 2u);
  EXPECT_EQ(component.Name.getValue(), "0000:03:00/1");
  EXPECT_EQ(component.Caption.getValue(), "Installed IMG_UEFI of adapter 0000:03:00");
  EXPECT_EQ(component.VersionString.getValue(), "2.0");
  EXPECT_THAT(component.TargetTypes.getValue(), ElementsAre("IMG_UEFI"));
  EXPECT_THAT(component.IdentityInfoType.getValue(),
              ElementsAre("Orvex:PCIDevice", "Orvex:Digest"));
  EXPECT_THAT(component.IdentityInfoValue.getValue(),
              ElementsAre("1af4:1041", test::MatchesRegex("[0-9a-f]+")));
  EXPECT_EQ(component.MajorVersion.getValue(), 2);
  EXPECT_TRUE(component.ExtendedResourceType.isNull());
}

TEST_F(SoftwareIdentityClass, HasNothingInstalledOfADamagedFlash) {
  test::Bytes flash = firmware(2);
  flash.back() ^= 1;
  m_adapters.makeAdapter(kAdapter, flash);
  EXPECT_THAT(identities(), IsEmpty());
}

std::vector<ma::AdapterListing> outlineWithDriver(ma::OutlineDepth depth) {
  std::vector<ma::AdapterListing> adapters = ma::outlineAdapters(depth);
  for (ma::AdapterListing& adapter : adapters) {
    if (adapter.pci == kAdapter) {
      adapter.subsystemVendor = 0x8086;
      adapter.subsystemDevice = 2;
      adapter.versions = {{"fw.undi", "1.0.0", "1.1.0"}, {"fw.mgmt", "7.1.0", ""}};
    }
  }
  return adapters;
}

TEST_F(SoftwareIdentityClass, HasWhatADriverSaysIsRunningAndStored) {
  m_adapters.makeAdapter(kAdapter, RomBuilder().add(RomImage::efi()).build());
  m_adapters.makeAdapter(kOtherAdapter, RomBuilder().add(RomImage::efi()).build());
  Orvex_SoftwareIdentityClass provider(m_files, outlineWithDriver);
  std::vector<std::string> told;
  for (const auto* software : enumerate<AdapterSoftware>(provider)) {
    told.push_back(software->InstanceID.getValue() + " " + software->VersionString.getValue() +
                   " " + std::string(software->getRelation()) + " on " + software->getAdapter());
  }

  EXPECT_THAT(told,
              ElementsAre("Orvex:InstalledFirmware:0000:03:00/0 1.0 installed on 0000:03:00",
                          "Orvex:RunningFirmware:0000:03:00/fw.undi 1.0.0 running on 0000:03:00",
                          "Orvex:StoredFirmware:0000:03:00/fw.undi 1.1.0 stored on 0000:03:00",
                          "Orvex:RunningFirmware:0000:03:00/fw.mgmt 7.1.0 running on 0000:03:00",
                          "Orvex:InstalledFirmware:0000:04:00/0 1.0 installed on 0000:04:00"));
  const AdapterSoftware& stored = *enumerate<AdapterSoftware>(provider).at(2);
  EXPECT_EQ(stored.getIdentity(), "0000:03:00/fw.undi");
  EXPECT_EQ(stored.ImageKind.getValue(), 2u);
  EXPECT_EQ(stored.Caption.getValue(), "Stored fw.undi of adapter 0000:03:00");
  EXPECT_TRUE(stored.TargetTypes.isNull());
  EXPECT_THAT(stored.IdentityInfoType.getValue(), ElementsAre("Orvex:PCIDevice"));
  EXPECT_THAT(stored.IdentityInfoValue.getValue(), ElementsAre("1af4:1041 sub 8086:0002"));
  EXPECT_EQ(stored.MinorVersion.getValue(), 1);
}

TEST_F(SoftwareIdentityClass, TellsWhatIsBehindASoftware) {
  m_adapters.makeAdapter(kAdapter, firmware(2));
  const std::string path = makeFile("first/image.rom", firmware(3));
  const std::vector<AdapterSoftware*> software = identities();

  EXPECT_EQ(software.at(0)->getFile(), m_files.latest().at(0));
  EXPECT_EQ(software.at(0)->getFile()->path, path);
  EXPECT_EQ(software.at(0)->getAdapter(), "");
  EXPECT_EQ(software.at(1)->getFile(), nullptr);
  EXPECT_EQ(software.at(1)->getAdapter(), kAdapter);
}

TEST_F(SoftwareIdentityClass, IsRebuiltAtEachEnumeration) {
  const std::string path = makeFile("first/image.rom", firmware(3));
  EXPECT_EQ(identities().size(), 1u);
  EXPECT_EQ(identities().size(), 1u);
  std::filesystem::remove(path);
  EXPECT_THAT(identities(), IsEmpty());
}

}  // namespace
