// An update of an adapter as the library's callers see it.

#include <cstdint>
#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "midapi/MidApi.h"
#include "tests/midapi/AdapterFixture.h"
#include "tests/midapi/AdaptersVariable.h"
#include "tests/support/RomBuilder.h"

namespace {

using ma::BootType;
using ma::FlashUpdate;
using ma::getAdapterFirmwareVersion;
using ma::setBootType;
using ma::updateCapabilityWord;
using ma::writeFlashImage;
using test::Bytes;
using test::RomBuilder;
using test::RomImage;
using testing::ElementsAre;
using utils::FirmwareType;
using utils::FirmwareVersionInfo;

constexpr const char* kPci = "0000:03:00";
constexpr const char* kPort = "0000:03:00.0";
constexpr const char* kSibling = "0000:03:00.1";

// An adapter that boots from iSCSI, and gets an image without it.
class FlashUpdateTest : public testing::Test {
 protected:
  FlashUpdateTest() {
    m_adapters.makeAdapter(kPci, m_old);
    m_adapters.set(kPci, "/ports/0/bootType", "2");
    m_adapters.set(kPci, "/capabilityWord", "4");
  }
  bool write(const Bytes& image, const std::string& port = kPort) {
    return writeFlashImage(port, image.data(), static_cast<std::uint32_t>(image.size()), m_code,
                           m_text);
  }
  bool updateWord(const std::vector<FirmwareType>& types, const std::string& port = kPort) {
    return updateCapabilityWord(port, types, m_code, m_text);
  }
  static std::vector<FirmwareVersionInfo> installed() {
    std::vector<FirmwareVersionInfo> versions;
    getAdapterFirmwareVersion(kPort, versions);
    return versions;
  }
  std::string word() { return m_adapters.get(kPci, "/capabilityWord"); }
  void takeIscsiBoot() {
    EXPECT_TRUE(setBootType(kPort, BootType::None));
    EXPECT_TRUE(setBootType(kSibling, BootType::None));
  }
  void expectOld() {
    EXPECT_EQ(m_adapters.flash(kPci), m_old);
    EXPECT_EQ(m_adapters.get(kPci, "/ports/0/bootType"), "2");
    EXPECT_EQ(m_adapters.get(kPci, "/ports/1/bootType"), "1");
    EXPECT_EQ(word(), "4");
    EXPECT_THAT(m_adapters.filesOf(kPci), ElementsAre("adapter.json", "flash.rom"));
  }

  const Bytes m_old =
      RomBuilder().add(RomImage::legacy().product("Maker iSCSI").version(1, 0)).build();
  const Bytes m_new = RomBuilder().add(RomImage::efi().version(2, 0)).build();
  test::AdapterFixture m_adapters;
  test::AdaptersVariable m_variable{m_adapters.directory()};
  std::uint32_t m_code = 0;
  std::string m_text;
};

TEST_F(FlashUpdateTest, IsMadeByTheCapabilityWord) {
  const FlashUpdate update(kPort);
  takeIscsiBoot();
  EXPECT_TRUE(write(m_new)) << m_text;
  EXPECT_THAT(installed(), ElementsAre(FirmwareVersionInfo{FirmwareType::Iscsi, {1, 0}}));
  EXPECT_TRUE(updateWord({FirmwareType::Uefi})) << m_text;
  EXPECT_THAT(installed(), ElementsAre(FirmwareVersionInfo{FirmwareType::Uefi, {2, 0}}));
  EXPECT_EQ(m_adapters.flash(kPci), m_new);
  EXPECT_EQ(m_adapters.get(kPci, "/ports/0/bootType"), "0");
  EXPECT_EQ(m_adapters.get(kPci, "/ports/1/bootType"), "0");
  EXPECT_EQ(word(), "16");
}

TEST_F(FlashUpdateTest, RecordsTheTypesOfTheNewFlashWhenItIsGivenNone) {
  const FlashUpdate update(kPort);
  EXPECT_TRUE(write(m_new)) << m_text;
  EXPECT_TRUE(updateWord({})) << m_text;
  EXPECT_EQ(word(), "16");
}

TEST_F(FlashUpdateTest, TakesBackTheBootTypesWhenTheWriteFails) {
  m_adapters.set(kPci, "/faults", R"({"write": {"atPercent": 40, "code": 17, "text": "broken"}})");
  {
    const FlashUpdate update(kPort);
    takeIscsiBoot();
    EXPECT_FALSE(write(m_new));
    EXPECT_EQ(m_code, 17U);
  }
  expectOld();
}

TEST_F(FlashUpdateTest, TakesBackTheFlashWhenTheCapabilityWordFails) {
  m_adapters.set(kPci, "/faults", R"({"capabilityWord": {"code": 18, "text": "locked"}})");
  {
    const FlashUpdate update(kSibling);
    takeIscsiBoot();
    EXPECT_TRUE(write(m_new)) << m_text;
    EXPECT_FALSE(updateWord({FirmwareType::Uefi}));
    EXPECT_EQ(m_code, 18U);
  }
  expectOld();
}

TEST_F(FlashUpdateTest, TakesBackWhatIsNotMade) {
  {
    const FlashUpdate update(kPort);
    takeIscsiBoot();
    EXPECT_TRUE(write(m_new)) << m_text;
  }
  expectOld();
}

TEST_F(FlashUpdateTest, OfAnUnknownAdapterIsRefusedByItsOperations) {
  const FlashUpdate nonsense("nonsense");
  const FlashUpdate unknown("0000:09:00.0");
  EXPECT_FALSE(setBootType("0000:09:00.0", BootType::None));
  EXPECT_FALSE(write(m_new, "0000:09:00.0"));
  EXPECT_EQ(m_code, 201U);
  EXPECT_FALSE(updateWord({}, "nonsense"));
  EXPECT_EQ(m_code, 201U);
}

TEST_F(FlashUpdateTest, RefusesPortsThatTheAdapterDoesNotHave) {
  const FlashUpdate update(kPort);
  EXPECT_FALSE(setBootType("0000:03:00.5", BootType::None));
}

}  // namespace
