#include <atomic>
#include <chrono>
#include <filesystem>
#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "tests/inventory/FirmwareFilesFixture.h"
#include "tests/midapi/RealRoms.h"

namespace {

namespace fs = std::filesystem;

using inventory::FirmwareFilePtr;
using test::Bytes;
using testing::ElementsAre;
using testing::IsEmpty;

using FirmwareFiles = test::FirmwareFilesFixture;

TEST_F(FirmwareFiles, AreFoundInTheOrderOfDirectoriesAndNames) {
  configure(secondDirectory().string() + ";" + firstDirectory().string());
  const std::string last = makeFile("first/a.rom", firmware(1));
  const std::string second = makeFile("second/c.bin", firmware(1));
  const std::string first = makeFile("second/b.rom", firmware(1));

  EXPECT_THAT(find(), ElementsAre(first, second, last));
  EXPECT_THAT(problems(), IsEmpty());
}

TEST_F(FirmwareFiles, AreDescribedByTheirImages) {
  makeFile("first/a.rom", firmware(3));

  const std::vector<FirmwareFilePtr> files = m_files.find();

  ASSERT_EQ(files.size(), 1u);
  const ma::FirmwareDescription& description = files[0]->description;
  EXPECT_THAT(
      description.images,
      ElementsAre(testing::Field(&utils::FirmwareVersionInfo::type, utils::FirmwareType::Pxe),
                  testing::Field(&utils::FirmwareVersionInfo::type, utils::FirmwareType::Uefi)));
  EXPECT_THAT(description.devices, ElementsAre("1af4:1041"));
}

TEST_F(FirmwareFiles, OfRealNetworkCardsAreFound) {
  const auto rom = test::realRom("efi-virtio.rom");
  if (!rom) {
    GTEST_SKIP() << test::kNoRealRoms;
  }
  const std::string path = makeFile("first/efi-virtio.rom", *rom);
  EXPECT_THAT(find(), ElementsAre(path));
}

TEST_F(FirmwareFiles, ComeAndGoWithTheDirectories) {
  EXPECT_THAT(find(), IsEmpty());
  const std::string path = makeFile("first/a.rom", firmware(1));
  EXPECT_THAT(find(), ElementsAre(path));
  configure(secondDirectory().string());
  EXPECT_THAT(find(), IsEmpty());
  configure(firstDirectory().string());
  fs::remove(path);
  EXPECT_THAT(find(), IsEmpty());
}

TEST_F(FirmwareFiles, AreThereOnceHoweverOftenADirectoryIsNamed) {
  const std::string path = makeFile("first/a.rom", firmware(1));
  configure(firstDirectory().string() + ";" + firstDirectory().string() + "/;" +
            (secondDirectory() / ".." / "first").string());
  EXPECT_THAT(find(), ElementsAre(path));
}

TEST_F(FirmwareFiles, HaveAbsolutePathsInRelativeDirectories) {
  const std::string path = makeFile("first/a.rom", firmware(1));
  const fs::path before = fs::current_path();
  fs::current_path(m_directory.path());
  configure("first");
  const std::vector<std::string> found = find();
  fs::current_path(before);
  EXPECT_THAT(found, ElementsAre(path));
}

TEST_F(FirmwareFiles, LeaveOutDirectories) {
  makeFile("first/folder/a.rom", firmware(1));
  const std::string path = makeFile("second/b.rom", firmware(1));

  EXPECT_THAT(find(), ElementsAre(path));
  EXPECT_THAT(problems(), IsEmpty());
}

TEST_F(FirmwareFiles, ReportWhatIsNoFirmware) {
  const std::string text = makeFile("first/README", Bytes(100, 'x'));
  const std::string empty = makeFile("first/a-empty", Bytes());
  const std::string damaged = makeFile(
      "first/damaged.rom",
      test::RomBuilder().add(test::RomImage::legacy()).damage(0, test::RomDamage::ByteSum).build());
  const std::string good = makeFile("second/good.rom", firmware(1));

  EXPECT_THAT(find(), ElementsAre(good));
  EXPECT_THAT(problems(),
              ElementsAre(leftOut(text, "it is no firmware file of a known format"),
                          leftOut(empty, "the file is empty"),
                          leftOut(damaged, "image 0 at 0x00: byte sum is 0x01, must be 0")));
}

TEST_F(FirmwareFiles, ReportAProblemOnceUntilItHasGoneOrChanged) {
  makeFile("first/a.rom", Bytes(100, 'x'));
  find();
  EXPECT_EQ(problems().size(), 1u);
  find();
  EXPECT_THAT(problems(), IsEmpty());

  makeFile("first/a.rom", Bytes());
  find();
  EXPECT_EQ(problems().size(), 1u);

  makeFile("first/a.rom", firmware(1));
  find();
  EXPECT_THAT(problems(), IsEmpty());
  makeFile("first/a.rom", Bytes());
  find();
  EXPECT_EQ(problems().size(), 1u);
}

// A configuration that does not tell its directories before the test lets it.
class HeldConfig : public utils::QuorvelConfig {
 public:
  using QuorvelConfig::QuorvelConfig;
  ~HeldConfig() override { release(); }

  void hold() { m_isHeld = true; }
  void release() { m_isHeld = false; }
  std::vector<std::string> getFWFilePaths() override {
    EXPECT_TRUE(test::waitUntil([this] { return !m_isHeld; }));
    return QuorvelConfig::getFWFilePaths();
  }

 private:
  std::atomic<bool> m_isHeld{false};
};

// Requests that do not wait for a look.
class FirmwareFilesInAHurry : public test::FirmwareFilesFixture {
 protected:
  FirmwareFilesInAHurry() { m_held.hold(); }
  ~FirmwareFilesInAHurry() override {
    // A look that has outlived its request uses the configuration.
    m_held.release();
    m_hurried.setPatience(test::kDeadline);
    const std::string path = makeFile("first/last.rom", firmware(1));
    EXPECT_TRUE(test::waitUntil([&] { return findAtOnce() == std::vector<std::string>{path}; }));
  }

  std::vector<std::string> findAtOnce() {
    m_log.clear();
    std::vector<std::string> paths;
    for (const FirmwareFilePtr& file : m_hurried.find()) {
      paths.push_back(file->path);
    }
    return paths;
  }

  HeldConfig m_held{m_settings.path()};
  inventory::FirmwareFiles m_hurried{std::chrono::milliseconds(1)};
};

TEST_F(FirmwareFilesInAHurry, AreThoseOfBeforeWhileALookGoesOn) {
  const std::string path = makeFile("first/a.rom", firmware(1));

  EXPECT_THAT(findAtOnce(), IsEmpty());
  EXPECT_THAT(problems(), ElementsAre(testing::HasSubstr("are still being read")));
  EXPECT_THAT(findAtOnce(), IsEmpty());
  EXPECT_THAT(problems(), IsEmpty());

  m_held.release();
  EXPECT_TRUE(test::waitUntil([&] { return findAtOnce() == std::vector<std::string>{path}; }));
  m_held.hold();
  static_cast<void>(findAtOnce());
  EXPECT_THAT(findAtOnce(), ElementsAre(path));
  fs::remove(path);
}

}  // namespace
