// What is remembered of comparisons, where the platform tells whether a file has changed, and what
// is not waited for.

#include <filesystem>
#include <gmock/gmock.h>
#include <string>

#include "tests/Os/HungDirectory.h"
#include "tests/inventory/FirmwareComparisonsFixture.h"

namespace {

using ma::ImageComparison;
using test::kAdapter;
using test::kOtherAdapter;
using testing::ElementsAre;

class PosixFirmwareComparisons : public test::FirmwareComparisonsFixture {
 protected:
  PosixFirmwareComparisons() { m_adapters.makeAdapter(kAdapter, firmware(2)); }

  // A file has to be left alone for a moment before it is known by its times.
  void awaitRemembered() {
    EXPECT_TRUE(test::waitUntil([this] { return countRead() == 0; }));
  }
};

TEST_F(PosixFirmwareComparisons, ReadAFileOnce) {
  makeFile("first/a.rom", firmware(3));
  makeFile("first/b.rom", firmware(1));
  EXPECT_EQ(countRead(), 2);
  awaitRemembered();

  EXPECT_EQ(countRead(), 0);
  EXPECT_THAT(find(), ElementsAre(ImageComparison::Newer, ImageComparison::Older));
}

TEST_F(PosixFirmwareComparisons, ReadAFileThatHasChanged) {
  makeFile("first/a.rom", firmware(3));
  makeFile("first/b.rom", firmware(3));
  awaitRemembered();

  makeFile("first/a.rom", firmware(1));
  EXPECT_EQ(countRead(), 1);
  EXPECT_THAT(find(), ElementsAre(ImageComparison::Older, ImageComparison::Newer));
}

TEST_F(PosixFirmwareComparisons, ReadTheFilesForAnAdapterThatHasChangedOrIsNew) {
  makeFile("first/a.rom", firmware(3));
  awaitRemembered();

  m_adapters.makeAdapter(kAdapter, firmware(4));
  EXPECT_EQ(countRead(), 1);
  EXPECT_THAT(find(), ElementsAre(ImageComparison::Older));
  m_adapters.makeAdapter(kOtherAdapter, firmware(2));
  EXPECT_EQ(countRead(), 1);
  EXPECT_THAT(find(kOtherAdapter), ElementsAre(ImageComparison::Newer));
  EXPECT_EQ(countRead(), 0);
}

TEST_F(PosixFirmwareComparisons, OfAFileThatChangesBehindItsDescriptionAreNotRemembered) {
  const std::string path = makeFile("first/a.rom", firmware(3));
  EXPECT_TRUE(test::waitUntil([this] { return m_files.find().at(0)->identity.has_value(); }));
  const auto files = m_files.latest();
  makeFile("first/a.rom", firmware(1));
  m_comparisons.look(files);
  EXPECT_THAT(find(), ElementsAre(ImageComparison::Older));
  m_comparisons.look(files);
  EXPECT_EQ(m_reading.count(), 2);
}

TEST_F(PosixFirmwareComparisons, OfAFileSystemThatDoesNotAnswerAreUnknownUntilItDoes) {
  makeFile("first/a.rom", firmware(3));
  makeFile("second/b.rom", firmware(3));
  const auto files = m_files.find();
  {
    const test::HungDirectory hung(firstDirectory().string());
    m_comparisons.look(files);
    EXPECT_THAT(find(), ElementsAre(ImageComparison::Unknown, ImageComparison::Newer));
    EXPECT_EQ(m_comparisons.countUncompared(), 0u);
  }
  m_comparisons.look(files);
  EXPECT_THAT(find(), ElementsAre(ImageComparison::Newer, ImageComparison::Newer));
}

}  // namespace
