// What a back end has to offer that leaves the rest to ChainFlashBackend: one whose flash is
// memory.

#include <algorithm>
#include <gmock/gmock.h>
#include <string>
#include <utility>
#include <vector>

#include "midapi/ChainFlashBackend.h"
#include "tests/support/RomBuilder.h"

namespace {

using ma::BootType;
using ma::FileBytes;
using ma::FlashError;
using ma::FlashFault;
using ma::ImageComparison;
using ma::PortId;
using ma::Preparation;
using ma::PrepareStatus;
using test::Bytes;
using test::RomBuilder;
using test::RomImage;
using testing::ElementsAre;
using testing::IsEmpty;
using utils::FirmwareType;
using utils::FirmwareVersionInfo;

const PortId kPort{{0, 3, 0}, 0};

RomImage pxe(std::uint8_t version) {
  return RomImage::legacy().version(version, 0);
}
RomImage uefi(std::uint8_t version) {
  return RomImage::efi().version(version, 0);
}

FileBytes toFileBytes(const Bytes& bytes) {
  FileBytes file(bytes.size());
  std::copy(bytes.begin(), bytes.end(), file.writable().begin());
  return file;
}

class MemoryBackend final : public ma::ChainFlashBackend {
 public:
  std::string describe(const ma::AdapterAddress& /*adapter*/) override { return "memory"; }
  bool hasAdapter(const ma::AdapterAddress& adapter) override { return adapter == kPort.adapter; }
  utils::StringArray enumerateAdapters() override { return {toString(kPort)}; }
  ma::AdapterList list() override { return {}; }
  ma::AdapterList outline(ma::OutlineDepth /*depth*/) override { return {}; }
  bool beginUpdate(const ma::AdapterAddress& /*adapter*/) override { return true; }
  void endUpdate(const ma::AdapterAddress& /*adapter*/) noexcept override {}
  void setBootType(const PortId& /*port*/, BootType /*bootType*/) override {}
  void writeFlash(const PortId& /*port*/, ma::ConstBytes image,
                  ma::WriteProgress& /*progress*/) override {
    flashToBe.assign(image.begin(), image.end());
  }
  ma::AdapterFacts facts(const PortId& port) override {
    if (port != kPort) {
      throw FlashFault(FlashError::UnknownAdapter, toString(port));
    }
    return {0x1AF4, 0x1041, isReplaceable};
  }
  FileBytes readFlash(const PortId& /*port*/) override { return toFileBytes(flash); }
  FileBytes readFlashToBe(const PortId& /*port*/) override { return toFileBytes(flashToBe); }
  void setCapabilityWord(const PortId& /*port*/, std::uint32_t word) override {
    words.push_back(word);
  }

  bool isReplaceable = true;
  Bytes flash;
  Bytes flashToBe;
  std::vector<std::uint32_t> words;
};

class ChainFlashBackend : public testing::Test {
 protected:
  ChainFlashBackend() { m_backend.flash = RomBuilder().add(pxe(2)).add(uefi(2)).build(); }

  Preparation prepare(const Bytes& file, const std::vector<FirmwareType>& types = {}) {
    m_image.assign(file.size(), 0);
    const Preparation preparation = m_backend.prepare(kPort, file, m_image, types);
    m_image.resize(preparation.filled);
    return preparation;
  }

  MemoryBackend m_backend;
  Bytes m_image;
};

TEST_F(ChainFlashBackend, AnswersByTheFirstCheckThatFails) {
  const Bytes other = RomBuilder().add(pxe(3).device(0x10EC, 0x8139)).build();
  const Bytes newer = RomBuilder().add(pxe(3)).add(uefi(3)).build();
  m_backend.isReplaceable = false;
  EXPECT_EQ(prepare(Bytes(10, 'x')).status, PrepareStatus::InvalidImage);
  EXPECT_EQ(prepare(other).status, PrepareStatus::NotForAdapter);
  EXPECT_EQ(prepare(newer).status, PrepareStatus::NotUpdatable);
  m_backend.isReplaceable = true;
  EXPECT_EQ(prepare(RomBuilder().add(pxe(1)).build()).status, PrepareStatus::TypesDiffer);
  EXPECT_EQ(prepare(RomBuilder().add(pxe(1)).add(uefi(3)).build()).status,
            PrepareStatus::Downgrade);
  EXPECT_EQ(prepare(newer).status, PrepareStatus::Ok);
  EXPECT_EQ(m_image, newer);
}

TEST_F(ChainFlashBackend, LooksAtTheFileBeforeTheAdapter) {
  const PortId unknown{{0, 9, 0}, 0};
  Bytes buffer(10);
  EXPECT_EQ(m_backend.prepare(unknown, Bytes(10, 'x'), buffer, {}).status,
            PrepareStatus::InvalidImage);
  const Bytes file = RomBuilder().add(pxe(3)).build();
  EXPECT_THROW(static_cast<void>(m_backend.prepare(unknown, file, buffer, {})), FlashFault);
}

TEST_F(ChainFlashBackend, PreparesNothingThatItsBufferCannotHold) {
  const Bytes file = RomBuilder().add(pxe(3)).add(uefi(3)).build();
  Bytes buffer(file.size() - 1);
  const Preparation preparation = m_backend.prepare(kPort, file, buffer, {});
  EXPECT_EQ(preparation.status, PrepareStatus::InternalFault);
  EXPECT_EQ(preparation.filled, 0U);
}

TEST_F(ChainFlashBackend, TellsWhatTheFlashHolds) {
  m_backend.flash =
      RomBuilder().add(pxe(2)).add(uefi(5).device(0x10EC, 0x8139)).add(uefi(4)).build();
  EXPECT_THAT(m_backend.installedFirmware(kPort),
              ElementsAre(FirmwareVersionInfo{FirmwareType::Pxe, {2, 0}},
                          FirmwareVersionInfo{FirmwareType::Uefi, {4, 0}}));
  m_backend.flash = Bytes(100, 'x');
  EXPECT_THAT(m_backend.installedFirmware(kPort), IsEmpty());
}

TEST_F(ChainFlashBackend, ComparesVersionsAndThenBytes) {
  EXPECT_EQ(m_backend.compare(kPort, m_backend.flash), ImageComparison::SameContent);
  EXPECT_EQ(m_backend.compare(kPort, RomBuilder().add(pxe(2).seed(9)).add(uefi(2)).build()),
            ImageComparison::SameVersion);
  EXPECT_EQ(m_backend.compare(kPort, RomBuilder().add(pxe(2)).add(uefi(3)).build()),
            ImageComparison::Newer);
  EXPECT_EQ(m_backend.compare(kPort, RomBuilder().add(pxe(1)).add(uefi(2)).build()),
            ImageComparison::Older);
  EXPECT_EQ(m_backend.compare(kPort, Bytes(10, 'x')), ImageComparison::NotForAdapter);
}

TEST_F(ChainFlashBackend, HasAnotherDigestWhenFlashOrRightIsAnother) {
  const std::uint64_t before = m_backend.digest(kPort);
  EXPECT_EQ(m_backend.digest(kPort), before);
  m_backend.isReplaceable = false;
  EXPECT_NE(m_backend.digest(kPort), before);
  m_backend.isReplaceable = true;
  m_backend.flash = RomBuilder().add(pxe(2)).add(uefi(3)).build();
  EXPECT_NE(m_backend.digest(kPort), before);
}

TEST_F(ChainFlashBackend, RecordsTheTypesThatItIsToldOrThoseThatTheFlashWillHold) {
  m_backend.flashToBe = RomBuilder().add(uefi(3)).build();
  m_backend.recordInstalled(kPort, {FirmwareType::Iscsi, FirmwareType::Pxe});
  m_backend.recordInstalled(kPort, {});
  m_backend.recordInstalled(kPort, {FirmwareType::None, static_cast<FirmwareType>(40)});
  EXPECT_THAT(m_backend.words, ElementsAre(0x0C, 0x10, 0x10));
}

}  // namespace
