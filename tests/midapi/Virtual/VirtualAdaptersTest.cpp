#include <gmock/gmock.h>
#include <set>

#include "midapi/Virtual/VirtualAdapters.h"
#include "tests/midapi/AdapterFixture.h"
#include "tests/support/RomBuilder.h"

namespace {

using ma::AdapterFault;
using ma::AdapterList;
using ma::AdapterListing;
using ma::AdapterPort;
using ma::AdapterSpec;
using ma::BootType;
using ma::kDefaultWriteRate;
using ma::kMaxPorts;
using ma::VirtualAdapters;
using test::RomBuilder;
using test::RomDamage;
using test::RomImage;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using utils::FirmwareType;

class VirtualAdaptersTest : public testing::Test {
 protected:
  VirtualAdaptersTest() {
    giveRom(RomBuilder()
                .add(RomImage::legacy().version(2, 1))
                .add(RomImage::efi().version(2, 2).device(0x10EC, 0x8139)));
    m_spec.pci = {0, 3, 0};
    m_spec.name = "Lab adapter";
    m_spec.vendor = 0x1AF4;
    m_spec.device = 0x1041;
    m_spec.ports = 2;
  }

  void giveRom(const RomBuilder& rom) { m_spec.rom = m_files.write("file.rom", rom.build()); }
  std::string refusal() {
    try {
      m_virtual.add(m_spec);
    } catch (const AdapterFault& fault) {
      return fault.what();
    }
    return "accepted";
  }

  test::TempDirectory m_files;
  test::AdapterFixture m_adapters;
  VirtualAdapters m_virtual{m_adapters.directory()};
  AdapterSpec m_spec;
};

TEST_F(VirtualAdaptersTest, ListsWhatItMade) {
  m_virtual.add(m_spec);
  const AdapterList list = m_virtual.list();
  EXPECT_THAT(list.problems, IsEmpty());
  ASSERT_THAT(list.adapters, SizeIs(1));
  const AdapterListing& adapter = list.adapters[0];
  EXPECT_EQ(adapter.pci, "0000:03:00");
  EXPECT_EQ(adapter.name, "Lab adapter");
  EXPECT_EQ(adapter.vendor, 0x1AF4);
  EXPECT_EQ(adapter.device, 0x1041);
  EXPECT_EQ(adapter.writeRate, kDefaultWriteRate);
  EXPECT_TRUE(adapter.isUpdatable);
  EXPECT_EQ(adapter.capabilityWord, 1U << 3);
  EXPECT_EQ(adapter.flashBytes, 2048U);
  EXPECT_EQ(adapter.flashDefect, "");

  ASSERT_THAT(adapter.ports, SizeIs(2));
  EXPECT_EQ(adapter.ports[1].identifier, "0000:03:00.1");
  EXPECT_EQ(adapter.ports[1].mac, "02:00:00:03:00:01");
  EXPECT_EQ(adapter.ports[1].bootType, BootType::Pxe);

  ASSERT_THAT(adapter.components, SizeIs(2));
  EXPECT_EQ(adapter.components[0].type, FirmwareType::Pxe);
  EXPECT_EQ(adapter.components[0].version.toString(), "2.1");
  EXPECT_TRUE(adapter.components[0].isForAdapter);
  EXPECT_EQ(adapter.components[1].offset, 1024U);
  EXPECT_FALSE(adapter.components[1].isForAdapter);
}

TEST_F(VirtualAdaptersTest, KeepsTheRomFileAsItIs) {
  giveRom(RomBuilder().add(RomImage::efi()).trailing(512, 0xFF));
  m_virtual.add(m_spec);
  EXPECT_EQ(m_adapters.flash("0000:03:00"), test::readBytes(m_spec.rom));
  EXPECT_THAT(m_adapters.filesOf("0000:03:00"), ElementsAre("adapter.json", "flash.rom"));
}

TEST_F(VirtualAdaptersTest, LetsPortsBootOverTheNetworkOnlyWhereTheRomCan) {
  giveRom(RomBuilder().add(RomImage::efi()));
  m_virtual.add(m_spec);
  EXPECT_EQ(m_virtual.list().adapters.at(0).ports.at(0).bootType, BootType::None);
}

TEST_F(VirtualAdaptersTest, TellsEqualVersionsApartByDigest) {
  const auto digestOf = [&](std::uint8_t bus, std::uint32_t seed) {
    giveRom(RomBuilder().add(RomImage::legacy().seed(seed)));
    m_spec.pci.bus = bus;
    m_virtual.add(m_spec);
    return m_virtual.list().adapters.back().components.at(0).digest;
  };
  const std::uint64_t first = digestOf(3, 1);
  EXPECT_NE(digestOf(4, 2), first);
  EXPECT_EQ(digestOf(5, 1), first);
}

TEST_F(VirtualAdaptersTest, GivesEveryPortAnAddressOfItsOwn) {
  m_spec.ports = kMaxPorts;
  m_virtual.add(m_spec);
  m_spec.pci = {0x1234, 0x56, 0x1F};
  m_virtual.add(m_spec);
  std::set<std::string> macs;
  for (const AdapterListing& adapter : m_virtual.list().adapters) {
    for (const AdapterPort& port : adapter.ports) {
      macs.insert(port.mac);
    }
  }
  EXPECT_THAT(macs, SizeIs(16));
  EXPECT_EQ(macs.count("02:12:34:56:1f:07"), 1U);
}

TEST_F(VirtualAdaptersTest, RefusesAnAddressThatIsTaken) {
  m_virtual.add(m_spec);
  const auto flash = m_adapters.flash("0000:03:00");
  giveRom(RomBuilder().add(RomImage::efi()));
  EXPECT_THAT(refusal(), AllOf(HasSubstr("Adapter 0000:03:00 exists already"),
                               HasSubstr("0000-03-00"), HasSubstr("Choose another address")));
  EXPECT_EQ(m_adapters.flash("0000:03:00"), flash);
}

TEST_F(VirtualAdaptersTest, MakesOnePortAndTheMostPorts) {
  m_spec.ports = 1;
  m_virtual.add(m_spec);
  m_spec.pci.bus = 4;
  m_spec.ports = kMaxPorts;
  m_virtual.add(m_spec);
  const AdapterList list = m_virtual.list();
  ASSERT_THAT(list.adapters, SizeIs(2));
  EXPECT_THAT(list.adapters[0].ports, SizeIs(1));
  EXPECT_THAT(list.adapters[1].ports, SizeIs(kMaxPorts));
}

TEST_F(VirtualAdaptersTest, RefusesPortNumbersOutOfRange) {
  m_spec.ports = 0;
  EXPECT_THAT(refusal(), HasSubstr("cannot have 0 ports. Give a number from 1 to 8."));
  m_spec.ports = 9;
  EXPECT_THAT(refusal(), HasSubstr("cannot have 9 ports"));
  EXPECT_TRUE(std::filesystem::is_empty(m_adapters.directory()));
}

TEST_F(VirtualAdaptersTest, RefusesANameThatNoDescriptionHolds) {
  m_spec.name = std::string(std::size_t{1} << 20, 'x');
  EXPECT_THAT(refusal(), AllOf(HasSubstr("Adapter 0000:03:00 was not made"),
                               HasSubstr("Give a shorter name")));
  EXPECT_TRUE(std::filesystem::is_empty(m_adapters.directory()));
}

TEST_F(VirtualAdaptersTest, SaysWhichCheckARomFailsAndWhere) {
  giveRom(RomBuilder()
              .add(RomImage::legacy().units(4))
              .add(RomImage::efi())
              .damage(1, RomDamage::ByteSum));
  EXPECT_THAT(refusal(), AllOf(HasSubstr("file.rom is no valid chain"),
                               HasSubstr("image 1 at 0x800: byte sum is 0x01, must be 0")));
  EXPECT_TRUE(std::filesystem::is_empty(m_adapters.directory()));
}

TEST_F(VirtualAdaptersTest, NamesARomFileThatCannotBeRead) {
  m_spec.rom = "/nowhere/file.rom";
  EXPECT_THAT(refusal(), AllOf(HasSubstr("Adapter 0000:03:00 was not made"),
                               HasSubstr("/nowhere/file.rom: No such file")));
}

TEST_F(VirtualAdaptersTest, MakesTheAdaptersDirectoryWhereItIsMissing) {
  const VirtualAdapters nested(m_adapters.directory() / "a" / "b");
  EXPECT_THAT(nested.list().adapters, IsEmpty());
  nested.add(m_spec);
  EXPECT_THAT(nested.list().adapters, SizeIs(1));
}

TEST_F(VirtualAdaptersTest, SweepsAwayWhatAKilledMakingLeft) {
  for (const char* name : {".0000-04-00.new-0123456789abcdef", ".0000-05-00.new-12345678", ".mine",
                           ".mine.new-0123456789abcdef"}) {
    std::filesystem::create_directories(m_adapters.directory() / name / "nested");
  }
  m_virtual.add(m_spec);
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(m_adapters.directory())) {
    names.insert(entry.path().filename().string());
  }
  EXPECT_THAT(names, ElementsAre(".mine", ".mine.new-0123456789abcdef", "0000-03-00"));
}

TEST_F(VirtualAdaptersTest, LeavesNothingBehindWhenTheDirectoryCannotBeUsed) {
  const auto file = m_files.write("no-directory", std::string("x"));
  const VirtualAdapters blocked(file);
  EXPECT_THROW(blocked.add(m_spec), AdapterFault);
  EXPECT_THROW(static_cast<void>(blocked.list()), AdapterFault);
  EXPECT_EQ(test::readText(file), "x");
}

TEST_F(VirtualAdaptersTest, ReportsFoldersThatItPassesOver) {
  m_virtual.add(m_spec);
  m_adapters.makeAdapter("0000:04:00", {});
  m_adapters.set("0000:04:00", "/deviceId", "\"zz\"");
  std::filesystem::create_directories(m_adapters.directory() / "0000-5-0");
  std::filesystem::create_directories(m_adapters.directory() / ".hidden");
  const AdapterList list = m_virtual.list();
  EXPECT_THAT(list.adapters, SizeIs(1));
  ASSERT_THAT(list.problems, SizeIs(2));
  EXPECT_EQ(list.problems[0].place, m_adapters.folder("0000:04:00").string());
  EXPECT_THAT(list.problems[0].text, HasSubstr("field deviceId"));
  EXPECT_EQ(list.problems[1].place, (m_adapters.directory() / "0000-5-0").string());
  EXPECT_THAT(list.problems[1].text, HasSubstr("no adapter address like 0000-03-00"));
}

TEST_F(VirtualAdaptersTest, TellsDamagedFlashFromBlankFlash) {
  m_adapters.makeAdapter("0000:03:00", std::vector<std::uint8_t>(512, 0xFF));
  m_adapters.makeAdapter("0000:04:00", std::vector<std::uint8_t>(512, 0x12));
  const AdapterList list = m_virtual.list();
  ASSERT_THAT(list.adapters, SizeIs(2));
  EXPECT_EQ(list.adapters[0].flashDefect, "");
  EXPECT_EQ(list.adapters[0].flashBytes, 512U);
  EXPECT_EQ(list.adapters[1].flashDefect, "image 0 at 0x00: no 55 AA signature");
}

}  // namespace
