#include <cerrno>
#include <filesystem>
#include <gmock/gmock.h>
#include <optional>
#include <string>
#include <utility>

#include "midapi/Kernel/KernelListing.h"
#include "tests/support/RomBuilder.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/VpdBuilder.h"

namespace {

using ma::AdapterListing;
using ma::describeKernelAdapter;
using ma::DevlinkInfo;
using ma::FirmwareVersions;
using ma::KernelAdapter;
using ma::KernelFunction;
using test::Bytes;
using test::RomBuilder;
using test::RomImage;
using testing::ElementsAre;
using testing::IsEmpty;

Bytes vpd(const std::string& name, const std::string& part, const std::string& serial) {
  return test::VpdBuilder().name(name).readOnly({{"PN", part}, {"SN", serial}}).build();
}

class KernelListing : public testing::Test {
 protected:
  KernelFunction& add(std::uint8_t number) {
    KernelFunction function;
    function.pci.id = {m_adapter.address, number};
    function.pci.ids = {0x1AF4, 0x1041, 0x1AF4, 0x1100};
    function.pci.driver = "testnic";
    m_adapter.functions.push_back(std::move(function));
    return m_adapter.functions.back();
  }
  AdapterListing describe() {
    ma::PciNames names(m_list);
    return describeKernelAdapter(m_adapter, names);
  }

  test::TempDirectory m_directory;
  const std::filesystem::path m_list = m_directory.path() / "pci.ids";
  KernelAdapter m_adapter{{0, 3, 0}, {}, false};
};

TEST_F(KernelListing, TellsWhatIsKnown) {
  KernelFunction& function = add(0);
  function.pci.interfaces = {{"eth0", "02:54:4e:00:00:30"}, {"eth1", "02:54:4e:00:00:31"}};
  function.pci.link = {ma::LinkKind::Ethernet, ma::PortState::Enabled, "", {}, {}, 1500U};
  function.answer.devlink =
      DevlinkInfo{"testnic", "serial", "board", {}, {{"fw.undi", "1.0.0"}}, {{"fw.undi", "1.1.0"}}};
  function.answer.vpd = {0, vpd("Test adapter", "TN-1", "S-1")};
  function.answer.rom = {0, RomBuilder().add(RomImage::efi()).build()};
  const AdapterListing listing = describe();
  EXPECT_EQ(listing.kind, ma::AdapterKind::Kernel);
  EXPECT_EQ(listing.pci, "0000:03:00");
  EXPECT_EQ(listing.vendor, 0x1AF4);
  EXPECT_EQ(listing.device, 0x1041);
  EXPECT_EQ(listing.subsystemVendor, 0x1AF4);
  EXPECT_EQ(listing.subsystemDevice, 0x1100);
  EXPECT_EQ(listing.ports.at(0).link, function.pci.link);
  EXPECT_EQ(listing.name, "Test adapter");
  EXPECT_EQ(listing.driver, "testnic");
  EXPECT_EQ(listing.partNumber, "TN-1");
  EXPECT_EQ(listing.serialNumber, "serial");
  EXPECT_THAT(listing.versions, ElementsAre(FirmwareVersions{"fw.undi", "1.0.0", "1.1.0"}));
  ASSERT_EQ(listing.ports.size(), 1U);
  EXPECT_EQ(listing.ports[0].identifier, "0000:03:00.0");
  EXPECT_EQ(listing.ports[0].mac, "02:54:4e:00:00:30");
  EXPECT_THAT(listing.ports[0].interfaces, ElementsAre("eth0", "eth1"));
  ASSERT_EQ(listing.components.size(), 1U);
  EXPECT_TRUE(listing.components[0].isForAdapter);
  EXPECT_THAT(listing.notes, IsEmpty());
}

TEST_F(KernelListing, TellsTheSpeedOfALinkThatIsUp) {
  KernelFunction& function = add(0);
  function.pci.link.state = ma::PortState::Enabled;
  EXPECT_EQ(describe().ports.at(0).link.speed, std::nullopt);
  function.answer.speed = 10'000'000'000U;
  EXPECT_EQ(describe().ports.at(0).link.speed, 10'000'000'000U);
  function.answer.speed = 0;
  EXPECT_EQ(describe().ports.at(0).link.speed, std::nullopt);
  function.answer.speed = 10'000'000'000U;
  function.pci.link.state = ma::PortState::Offline;
  EXPECT_EQ(describe().ports.at(0).link.speed, std::nullopt);
}

TEST_F(KernelListing, OutlinesAnAdapterWithoutItsFlash) {
  KernelFunction& function = add(0);
  function.answer.vpd = {0, vpd("Test adapter", "TN-1", "S-1")};
  function.answer.rom = {0, RomBuilder().add(RomImage::efi()).build()};
  ma::PciNames names(m_list);
  const AdapterListing listing = outlineKernelAdapter(m_adapter, names);
  EXPECT_EQ(listing.name, "Test adapter");
  EXPECT_EQ(listing.ports.size(), 1U);
  EXPECT_THAT(listing.components, IsEmpty());
  EXPECT_EQ(listing.flashBytes, 0U);
}

TEST_F(KernelListing, LeavesEmptyWhatIsNot) {
  add(0).pci.driver = "";
  const AdapterListing listing = describe();
  EXPECT_EQ(listing.name + listing.driver + listing.partNumber + listing.serialNumber, "");
  EXPECT_THAT(listing.versions, IsEmpty());
  EXPECT_THAT(listing.flashDefect, IsEmpty());
  EXPECT_THAT(listing.ports[0].interfaces, IsEmpty());
}

TEST_F(KernelListing, NamesAnAdapterThatHasNoNameByItsIds) {
  m_directory.write("pci.ids", std::string("1af4  Maker\n\t1041  Network device\n"));
  KernelFunction& function = add(0);
  EXPECT_EQ(describe().name, "Maker Network device");
  function.answer.vpd = {0, vpd("Test adapter", "", "")};
  EXPECT_EQ(describe().name, "Test adapter");
}

TEST_F(KernelListing, TakesSerialNumbersInTheirOrder) {
  KernelFunction& function = add(0);
  function.answer.vpd = {0, vpd("", "", "of the VPD")};
  EXPECT_EQ(describe().serialNumber, "of the VPD");
  function.answer.devlink = DevlinkInfo{"testnic", "", "of the board", {}, {}, {}};
  EXPECT_EQ(describe().serialNumber, "of the board");
}

TEST_F(KernelListing, HasAPortForEachFunctionAndWhatTheFirstThatHasItSays) {
  for (std::uint8_t number = 0; number < 4; ++number) {
    add(number);
  }
  m_adapter.functions[2].answer.vpd = {0, vpd("Four ports", "TN-4", "S-4")};
  m_adapter.functions[2].answer.devlink = DevlinkInfo{"testnic", "", "", {}, {{"fw", "1"}}, {}};
  m_adapter.functions[3].answer.devlink = DevlinkInfo{"testnic", "", "", {}, {{"fw", "2"}}, {}};
  m_adapter.functions[3].answer.rom = {0, RomBuilder().add(RomImage::efi()).build()};
  const AdapterListing listing = describe();
  EXPECT_EQ(listing.ports.size(), 4U);
  EXPECT_EQ(listing.ports[3].identifier, "0000:03:00.3");
  EXPECT_EQ(listing.name, "Four ports");
  EXPECT_EQ(listing.flashBytes, 1024U);
  EXPECT_THAT(listing.versions, ElementsAre(FirmwareVersions{"fw", "1", ""}));
  EXPECT_THAT(versionsOf(m_adapter, 3), ElementsAre(FirmwareVersions{"fw", "2", ""}));
}

TEST_F(KernelListing, TakesTheFirmwareVersionOfEthtoolWithoutDevlink) {
  KernelFunction& function = add(0);
  function.answer.info = ma::DriverInfo{"e1000e", "6.1", "2.1-0"};
  EXPECT_THAT(describe().versions, ElementsAre(FirmwareVersions{"fw", "2.1-0", ""}));
  function.answer.info->firmwareVersion.clear();
  EXPECT_THAT(describe().versions, IsEmpty());
}

TEST_F(KernelListing, TellsWhatTheWriterHasNotedWhereNoDriverTells) {
  KernelFunction& function = add(0);
  m_adapter.noted = ma::FlashEntry{1, 2, {{"fw", "1.0"}}, {{"fw", "2.0"}}, {{"fw", "0.9"}}};
  EXPECT_THAT(describe().versions, ElementsAre(FirmwareVersions{"fw", "0.9", "1.0"}));
  function.answer.devlink = DevlinkInfo{"testnic", "", "", {}, {{"fw", "3"}}, {}};
  EXPECT_THAT(describe().versions, ElementsAre(FirmwareVersions{"fw", "3", ""}));
}

TEST_F(KernelListing, NamesOnceWhatNeedsRoot) {
  for (std::uint8_t number = 0; number < 2; ++number) {
    KernelFunction& function = add(number);
    function.pci.hasRom = true;
    function.answer.rom.error = EACCES;
    function.answer.vpd.error = EACCES;
  }
  EXPECT_THAT(describe().notes, ElementsAre("not readable without root: its option ROM, its part "
                                            "and serial number (VPD)"));
  EXPECT_FALSE(isRomKnown(m_adapter));
}

TEST_F(KernelListing, NamesWhatCannotBeReadAtAll) {
  KernelFunction& function = add(0);
  function.pci.hasRom = true;
  function.answer.rom.error = EIO;
  function.answer.error = EAGAIN;
  EXPECT_THAT(describe().notes,
              ElementsAre("its driver could not be asked: Resource temporarily unavailable",
                          "its option ROM cannot be read: Input/output error"));
}

TEST_F(KernelListing, NamesWhatTheFlashDoesNotHoldAsAWhole) {
  for (std::uint8_t number = 0; number < 2; ++number) {
    add(number).answer.devlink =
        DevlinkInfo{"testnic", "", "", {}, {}, {{"fw.undi", ""}, {"fw.mgmt", "7.1.0"}}};
  }
  EXPECT_THAT(describe().notes,
              ElementsAre("its driver tells no stored version of fw.undi: an update of it has not "
                          "been finished; update it again"));
  EXPECT_THAT(versionsOf(m_adapter, 0), ElementsAre(FirmwareVersions{"fw.undi", "", "", true},
                                                    FirmwareVersions{"fw.mgmt", "", "7.1.0"}));
}

TEST_F(KernelListing, KnowsTheOptionRomOfAnAdapterWithoutOne) {
  add(0);
  EXPECT_TRUE(isRomKnown(m_adapter));
}

}  // namespace
