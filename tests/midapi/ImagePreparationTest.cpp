#include <gmock/gmock.h>

#include "midapi/ImagePreparation.h"
#include "tests/support/RomBuilder.h"
#include "tests/support/RomParser.h"

namespace {

using ma::AdapterFacts;
using ma::checkAdapter;
using ma::copyImages;
using ma::ImageSelection;
using ma::OptionRomImage;
using ma::parseRomChain;
using ma::PrepareStatus;
using ma::RomChain;
using ma::selectImages;
using test::Bytes;
using test::RomBuilder;
using test::RomImage;
using testing::ElementsAre;
using testing::IsEmpty;
using utils::FirmwareType;

constexpr AdapterFacts kAdapter{0x1AF4, 0x1041, true};

RomImage pxe(std::uint8_t version) {
  return RomImage::legacy().version(version, 0).seed(version);
}
RomImage uefi(std::uint8_t version) {
  return RomImage::efi().version(version, 0).seed(version);
}
RomImage iscsi(std::uint8_t version) {
  return pxe(version).product("iSCSI");
}

class ImagePreparation : public testing::Test {
 protected:
  void offer(const RomBuilder& file) { m_file = file.build(); }
  void install(const RomBuilder& flash) { m_flash = flash.build(); }

  PrepareStatus select(const std::vector<FirmwareType>& types = {}) {
    m_chain = parseRomChain(m_file);
    m_selection = selectImages(m_chain, parseRomChain(m_flash), kAdapter, types);
    return m_selection.status;
  }
  std::vector<FirmwareType> selected() const {
    std::vector<FirmwareType> types;
    for (const OptionRomImage* image : m_selection.images) {
      types.push_back(image->type);
    }
    return types;
  }
  // Returns the prepared image; empty where it could not be made in a buffer of that size.
  Bytes copied(std::size_t bufferSize) const {
    Bytes buffer(bufferSize);
    const auto filled = copyImages(m_file, m_selection.images, buffer);
    buffer.resize(filled.value_or(0));
    return buffer;
  }

  Bytes m_file;
  Bytes m_flash;
  RomChain m_chain;
  ImageSelection m_selection;
};

TEST_F(ImagePreparation, RefusesFilesForOtherDevicesBeforeItAsksForPermission) {
  const RomChain other = parseRomChain(RomBuilder().add(pxe(1).device(0x10EC, 0x8139)).build());
  const RomChain own = parseRomChain(RomBuilder().add(pxe(1)).build());
  const AdapterFacts fixed{kAdapter.vendor, kAdapter.device, false};
  EXPECT_EQ(checkAdapter(other, kAdapter), PrepareStatus::NotForAdapter);
  EXPECT_EQ(checkAdapter(other, fixed), PrepareStatus::NotForAdapter);
  EXPECT_EQ(checkAdapter(own, fixed), PrepareStatus::NotUpdatable);
  EXPECT_EQ(checkAdapter(own, kAdapter), PrepareStatus::Ok);
}

TEST_F(ImagePreparation, TakesTheWholeFileWhenNoTypesAreRequested) {
  install(RomBuilder().add(pxe(1)).add(uefi(1)));
  offer(RomBuilder()
            .add(pxe(1))
            .add(RomImage::ofCodeType(1))
            .add(pxe(1).device(0x10EC, 0x8139))
            .add(uefi(1))
            .trailing(512, 0xFF));
  EXPECT_EQ(select(), PrepareStatus::Ok);
  const Bytes chain(m_file.begin(), m_file.end() - 512);
  EXPECT_EQ(copied(m_file.size()), chain);
}

TEST_F(ImagePreparation, SelectsRequestedTypesInFileOrderAndForTheAdapterOnly) {
  install(RomBuilder().add(pxe(1)));
  offer(RomBuilder()
            .add(uefi(1))
            .add(iscsi(1))
            .add(pxe(1).device(0x10EC, 0x8139))
            .add(pxe(1))
            .add(RomImage::ofCodeType(1)));
  EXPECT_EQ(select({FirmwareType::Pxe, FirmwareType::Uefi, FirmwareType::Pxe}), PrepareStatus::Ok);
  EXPECT_THAT(selected(), ElementsAre(FirmwareType::Uefi, FirmwareType::Pxe));

  const Bytes image = copied(m_file.size());
  const test::ParsedRom judged = test::parseRom(image);
  EXPECT_TRUE(judged.isValid()) << judged;
  EXPECT_THAT(judged.types(), ElementsAre(FirmwareType::Uefi, FirmwareType::Pxe));
  EXPECT_EQ(image.size(), 2048U);
}

TEST_F(ImagePreparation, ReportsTypesThatTheFileLacksAndSelectsTheOthers) {
  offer(RomBuilder().add(pxe(1)).add(uefi(1).device(0x10EC, 0x8139)));
  EXPECT_EQ(select({FirmwareType::Pxe, FirmwareType::Uefi}), PrepareStatus::TypesDiffer);
  EXPECT_THAT(selected(), ElementsAre(FirmwareType::Pxe));
  EXPECT_EQ(select({FirmwareType::Clp}), PrepareStatus::TypesDiffer);
  EXPECT_THAT(selected(), IsEmpty());
  EXPECT_EQ(select({static_cast<FirmwareType>(99)}), PrepareStatus::TypesDiffer);
  EXPECT_THAT(selected(), IsEmpty());
}

TEST_F(ImagePreparation, LetsTypeNoneSelectNothingAndLackNothing) {
  install(RomBuilder().add(pxe(1)));
  offer(RomBuilder().add(pxe(1)).add(RomImage::ofCodeType(1)));
  EXPECT_EQ(select({FirmwareType::None, FirmwareType::Pxe}), PrepareStatus::Ok);
  EXPECT_THAT(selected(), ElementsAre(FirmwareType::Pxe));
  EXPECT_EQ(select({FirmwareType::None}), PrepareStatus::TypesDiffer);
  EXPECT_THAT(copied(m_file.size()), IsEmpty());
}

TEST_F(ImagePreparation, ComparesTheFilesTypesWithTheInstalledOnesWhenNoneAreRequested) {
  install(RomBuilder().add(pxe(1)).add(uefi(1)));
  offer(RomBuilder().add(pxe(1)));
  EXPECT_EQ(select(), PrepareStatus::TypesDiffer);
  EXPECT_THAT(selected(), ElementsAre(FirmwareType::Pxe));
  offer(RomBuilder().add(pxe(1)).add(uefi(1)).add(iscsi(1)));
  EXPECT_EQ(select(), PrepareStatus::TypesDiffer);
  offer(RomBuilder().add(uefi(1)).add(pxe(1)));
  EXPECT_EQ(select(), PrepareStatus::Ok);
}

TEST_F(ImagePreparation, ComparesTypesAndVersionsOfImagesForTheAdapterOnly) {
  install(RomBuilder().add(uefi(9).device(0x10EC, 0x8139)).add(pxe(2)));
  offer(RomBuilder().add(pxe(2)).add(iscsi(1).device(0x10EC, 0x8139)));
  EXPECT_EQ(select(), PrepareStatus::Ok);
  install(RomBuilder().add(pxe(9).device(0x10EC, 0x8139)).add(pxe(2)));
  EXPECT_EQ(select(), PrepareStatus::Ok);
}

TEST_F(ImagePreparation, TakesBlankAndDamagedFlashForEmpty) {
  offer(RomBuilder().add(pxe(1)));
  m_flash = Bytes(4096, 0xFF);
  EXPECT_EQ(select(), PrepareStatus::TypesDiffer);
  EXPECT_EQ(select({FirmwareType::Pxe}), PrepareStatus::Ok);
  install(RomBuilder().add(pxe(9)).damage(0, test::RomDamage::ByteSum));
  EXPECT_EQ(select({FirmwareType::Pxe}), PrepareStatus::Ok);
}

TEST_F(ImagePreparation, ReportsADowngradeOfAnySelectedImage) {
  install(RomBuilder().add(pxe(2)).add(uefi(2)));
  offer(RomBuilder().add(pxe(3)).add(uefi(1)));
  EXPECT_EQ(select(), PrepareStatus::Downgrade);
  EXPECT_THAT(selected(), ElementsAre(FirmwareType::Pxe, FirmwareType::Uefi));
  EXPECT_EQ(select({FirmwareType::Uefi}), PrepareStatus::Downgrade);
  EXPECT_EQ(select({FirmwareType::Pxe}), PrepareStatus::Ok);
}

TEST_F(ImagePreparation, TellsWhichImageMakesADowngrade) {
  install(RomBuilder().add(pxe(2)).add(uefi(2)));
  offer(RomBuilder().add(pxe(3)).add(uefi(1)));
  EXPECT_EQ(select(), PrepareStatus::Downgrade);
  ASSERT_TRUE(m_selection.older);
  EXPECT_EQ(m_selection.older->type, FirmwareType::Uefi);
  EXPECT_EQ(m_selection.older->version.toString(), "1.0");
  EXPECT_EQ(m_selection.older->installed.toString(), "2.0");
  EXPECT_EQ(select({FirmwareType::Pxe}), PrepareStatus::Ok);
  EXPECT_FALSE(m_selection.older);
}

TEST_F(ImagePreparation, ReportsDifferingTypesBeforeADowngrade) {
  install(RomBuilder().add(pxe(2)).add(uefi(2)));
  offer(RomBuilder().add(pxe(1)));
  EXPECT_EQ(select(), PrepareStatus::TypesDiffer);
  EXPECT_EQ(select({FirmwareType::Pxe, FirmwareType::Uefi}), PrepareStatus::TypesDiffer);
  EXPECT_EQ(select({FirmwareType::Pxe}), PrepareStatus::Downgrade);
}

TEST_F(ImagePreparation, AllowsReinstallingEqualVersions) {
  install(RomBuilder().add(pxe(3)).add(pxe(1)));
  offer(RomBuilder().add(pxe(3)).add(pxe(1)));
  EXPECT_EQ(select(), PrepareStatus::Ok);
  offer(RomBuilder().add(pxe(3)).add(pxe(1)).add(pxe(0)));
  EXPECT_EQ(select(), PrepareStatus::Downgrade);
  offer(RomBuilder().add(pxe(2)));
  EXPECT_EQ(select(), PrepareStatus::Downgrade);
}

TEST_F(ImagePreparation, ComparesTheMinorPartOfVersionsToo) {
  install(RomBuilder().add(RomImage::legacy().version(2, 10)));
  offer(RomBuilder().add(RomImage::legacy().version(2, 9)));
  EXPECT_EQ(select(), PrepareStatus::Downgrade);
  offer(RomBuilder().add(RomImage::legacy().version(3, 0)));
  EXPECT_EQ(select(), PrepareStatus::Ok);
}

TEST_F(ImagePreparation, NeedsABufferOfTheSelectedSizeOnly) {
  offer(RomBuilder().add(pxe(1)).add(uefi(1)));
  static_cast<void>(select({FirmwareType::Pxe}));
  EXPECT_EQ(copied(1024).size(), 1024U);
  EXPECT_THAT(copied(1023), IsEmpty());
}

TEST_F(ImagePreparation, GivesUpWhereTheSumCannotBePutRight) {
  offer(RomBuilder().add(pxe(1).padding(0, 0)).add(uefi(1)));
  static_cast<void>(select({FirmwareType::Pxe}));
  EXPECT_THAT(copied(m_file.size()), IsEmpty());
  static_cast<void>(select({FirmwareType::Pxe, FirmwareType::Uefi}));
  EXPECT_EQ(copied(m_file.size()), m_file);
}

TEST_F(ImagePreparation, ComparesAnImageWithTheFlash) {
  const Bytes flash = RomBuilder().add(pxe(2)).add(uefi(2)).trailing(512, 0xFF).build();
  const auto compare = [&flash](const RomBuilder& image) {
    return ma::compareImages(kAdapter, image.build(), flash);
  };
  EXPECT_EQ(compare(RomBuilder().add(pxe(2)).add(uefi(2))), ma::ImageComparison::SameContent);
  EXPECT_EQ(compare(RomBuilder().add(pxe(2).seed(9)).add(uefi(2))),
            ma::ImageComparison::SameVersion);
  EXPECT_EQ(compare(RomBuilder().add(pxe(2)).add(uefi(3))), ma::ImageComparison::Newer);
}

TEST_F(ImagePreparation, SaysWhatARefusedFileIsToTheAdapter) {
  EXPECT_EQ(ma::comparisonOf(PrepareStatus::InvalidImage), ma::ImageComparison::NotForAdapter);
  EXPECT_EQ(ma::comparisonOf(PrepareStatus::NotUpdatable), ma::ImageComparison::NotUpdatable);
  EXPECT_EQ(ma::comparisonOf(PrepareStatus::TypesDiffer), ma::ImageComparison::TypesDiffer);
  EXPECT_EQ(ma::comparisonOf(PrepareStatus::Downgrade), ma::ImageComparison::Older);
  EXPECT_EQ(ma::comparisonOf(PrepareStatus::InternalFault), ma::ImageComparison::Unknown);
}

}  // namespace
