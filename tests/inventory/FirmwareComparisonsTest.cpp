#include <chrono>
#include <filesystem>
#include <gmock/gmock.h>
#include <string>

#include "tests/inventory/FirmwareComparisonsFixture.h"

namespace {

using ma::ImageComparison;
using test::kAdapter;
using test::kOtherAdapter;
using test::RomBuilder;
using test::RomImage;
using testing::Each;
using testing::ElementsAre;

using FirmwareComparisons = test::FirmwareComparisonsFixture;

TEST_F(FirmwareComparisons, TellWhatFilesAreToAnAdapter) {
  m_adapters.makeAdapter(kAdapter, firmware(2));
  makeFile("first/1-older", firmware(1));
  makeFile("first/2-same", firmware(2));
  makeFile("first/3-newer", firmware(3));
  makeFile("first/4-types", RomBuilder().add(RomImage::legacy().version(3, 0)).build());
  makeFile("first/5-content", RomBuilder()
                                  .add(RomImage::legacy().version(2, 0).seed(77))
                                  .add(RomImage::efi().version(2, 0))
                                  .build());
  makeFile("first/6-foreign", RomBuilder().add(RomImage::legacy().device(1, 2)).build());
  look();

  EXPECT_THAT(find(), ElementsAre(ImageComparison::Older, ImageComparison::SameContent,
                                  ImageComparison::Newer, ImageComparison::TypesDiffer,
                                  ImageComparison::SameVersion, ImageComparison::NotForAdapter));
  EXPECT_THAT(find(kOtherAdapter), Each(ImageComparison::Unknown));
  EXPECT_EQ(m_comparisons.countUncompared(), 0u);
}

TEST_F(FirmwareComparisons, ReadAFileOnceForAllAdapters) {
  m_adapters.makeAdapter(kAdapter, firmware(2));
  m_adapters.makeAdapter(kOtherAdapter, firmware(4));
  makeFile("first/image.rom", firmware(3));

  EXPECT_EQ(countRead(), 1);
  EXPECT_THAT(find(kAdapter), ElementsAre(ImageComparison::Newer));
  EXPECT_THAT(find(kOtherAdapter), ElementsAre(ImageComparison::Older));
}

TEST_F(FirmwareComparisons, ReadNoFileWithoutAnAdapter) {
  makeFile("first/image.rom", firmware(3));
  EXPECT_EQ(countRead(), 0);
  m_adapters.makeAdapter(kAdapter, firmware(2));
  EXPECT_EQ(countRead(), 1);
}

TEST_F(FirmwareComparisons, AreUnknownWithoutALook) {
  m_adapters.makeAdapter(kAdapter, firmware(2));
  makeFile("first/image.rom", firmware(3));
  static_cast<void>(m_files.find());

  EXPECT_THAT(find(), ElementsAre(ImageComparison::Unknown));
  EXPECT_EQ(m_reading.count(), 0);
}

TEST_F(FirmwareComparisons, OfAFileThatIsGoneAreNone) {
  m_adapters.makeAdapter(kAdapter, firmware(2));
  const std::string path = makeFile("first/image.rom", firmware(3));
  const auto files = m_files.find();
  std::filesystem::remove(path);
  m_comparisons.look(files);

  EXPECT_THAT(find(), ElementsAre(ImageComparison::NotForAdapter));
  m_comparisons.look({});
  EXPECT_THAT(find(), ElementsAre(ImageComparison::Unknown));
}

TEST_F(FirmwareComparisons, WithAnAdapterThatHasChangedAreUnknownUntilTheNextLook) {
  m_adapters.makeAdapter(kAdapter, firmware(2));
  makeFile("first/1-image", firmware(3));
  makeFile("first/2-foreign", RomBuilder().add(RomImage::legacy().device(1, 2)).build());
  look();
  m_adapters.makeAdapter(kAdapter, firmware(3));

  EXPECT_THAT(find(), ElementsAre(ImageComparison::Unknown, ImageComparison::Unknown));
  look();
  EXPECT_THAT(find(), ElementsAre(ImageComparison::SameContent, ImageComparison::NotForAdapter));
  m_adapters.set(kAdapter, "/updatable", "false");
  EXPECT_THAT(find(), ElementsAre(ImageComparison::Unknown, ImageComparison::Unknown));
  look();
  EXPECT_THAT(find(), ElementsAre(ImageComparison::NotUpdatable, ImageComparison::NotForAdapter));
  m_adapters.set(kAdapter, "/vendorId", "\"0001\"");  // another adapter has its place
  m_adapters.set(kAdapter, "/deviceId", "\"0002\"");
  EXPECT_THAT(find(), ElementsAre(ImageComparison::Unknown, ImageComparison::Unknown));
}

TEST_F(FirmwareComparisons, AreWithTheAdapterAsItIsAfterAFileWasRead) {
  m_adapters.makeAdapter(kAdapter, firmware(2));
  makeFile("first/image.rom", firmware(3));
  inventory::FirmwareComparisons comparisons(test::kDeadline, [this](const std::string& path) {
    m_adapters.makeAdapter(kAdapter, firmware(3));
    return inventory::readFirmwareFile(path);
  });
  const auto files = m_files.find();
  comparisons.look(files);

  EXPECT_THAT(comparisons.find(*files.at(0), inventory::digestAdapters(inventory::findAdapters())),
              ElementsAre(ImageComparison::SameContent));
}

TEST_F(FirmwareComparisons, OfAFileThatCannotBeReadAreUnknown) {
  m_adapters.makeAdapter(kAdapter, firmware(2));
  makeFile("first/image.rom", firmware(3));
  inventory::FirmwareComparisons comparisons(
      test::kDeadline, [](const std::string& /*path*/) { return std::nullopt; });
  const auto files = m_files.find();
  comparisons.look(files);

  EXPECT_THAT(comparisons.find(*files.at(0), inventory::digestAdapters(inventory::findAdapters())),
              ElementsAre(ImageComparison::Unknown));
  EXPECT_EQ(comparisons.countUncompared(), 0u);
}

TEST_F(FirmwareComparisons, AreThoseThatAreKnownWhileALookGoesOn) {
  m_adapters.makeAdapter(kAdapter, firmware(2));
  makeFile("first/a.rom", firmware(3));
  look();
  m_reading.hold(makeFile("first/b.rom", firmware(1)));
  m_comparisons.setPatience(std::chrono::milliseconds(1));

  // The first one waits, the second one finds that nobody has come back.
  for (int i = 0; i < 2; ++i) {
    look();
    EXPECT_THAT(find(), ElementsAre(ImageComparison::Newer, ImageComparison::Unknown));
    EXPECT_EQ(m_comparisons.countUncompared(), 1u);
    EXPECT_TRUE(m_comparisons.isLooking());
  }

  m_reading.release();
  EXPECT_TRUE(test::waitUntil([this] {
    look();
    return find().at(1) == ImageComparison::Older;
  }));
}

}  // namespace
