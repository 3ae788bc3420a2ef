#include <cstdint>
#include <filesystem>
#include <gmock/gmock.h>
#include <memory>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "inventory/FirmwareSearch.h"
#include "tests/inventory/InventoryFixture.h"
#include "tests/support/TempDirectory.h"

namespace {

namespace fs = std::filesystem;

using inventory::FirmwareFilePtr;
using test::Bytes;
using test::RomBuilder;
using test::RomImage;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Optional;
using testing::SizeIs;

class Findings final : public inventory::FirmwareFindings {
 public:
  std::vector<std::string> paths;
  std::vector<std::string> problems;
  std::size_t enough = 1'000'000;

  void addFile(FirmwareFilePtr file) override { paths.push_back(file->path); }
  void addProblem(const std::string& problem) override { problems.push_back(problem); }
  [[nodiscard]] bool isEnough() const override { return paths.size() >= enough; }
};

class FirmwareSearch : public test::InventoryFixture {
 protected:
  const Findings& look() {
    m_findings = std::make_unique<Findings>();
    m_search.look(m_config, *m_findings);
    return *m_findings;
  }
  void allowBytes(std::uint32_t size) {
    m_settings.write({{"FWFilePath", firstDirectory().string()}, {"MaxImageSize", size}});
  }
  static std::string leftOut(const std::string& path, const std::string& reason) {
    return "Firmware file '" + path + "' is left out: " + reason;
  }

  inventory::FirmwareSearch m_search;
  std::unique_ptr<Findings> m_findings;
};

TEST_F(FirmwareSearch, LeavesOutWhatIsLargerThanTheSetting) {
  const Bytes image = firmware(1);
  const std::string fits = makeFile("first/a.rom", image);
  Bytes padded = image;
  padded.push_back(0xFF);
  const std::string large = makeFile("first/b.rom", padded);
  allowBytes(static_cast<std::uint32_t>(image.size()));

  const Findings& found = look();

  EXPECT_THAT(found.paths, ElementsAre(fits));
  EXPECT_THAT(
      found.problems,
      ElementsAre(leftOut(large, "its " + std::to_string(padded.size()) +
                                     " bytes are more than MaxImageSize allows (" +
                                     std::to_string(image.size()) + " in " +
                                     utils::QuorvelConfig::placeOf(m_settings.path()) + ")")));
  EXPECT_THAT(inventory::readFirmwareFile(fits), Optional(image));
  EXPECT_THAT(inventory::readFirmwareFile(large), Optional(Bytes()));
}

TEST_F(FirmwareSearch, TakesAFileOf64MiBByDefault) {
  const std::string fits = makeFile("first/a.rom", firmware(1));
  const std::string large = makeFile("first/b.rom", firmware(1));
  fs::resize_file(large, (std::uintmax_t{64} << 20) + 1);

  EXPECT_THAT(look().paths, ElementsAre(fits));
  fs::resize_file(large, std::uintmax_t{64} << 20);
  EXPECT_THAT(look().paths, ElementsAre(fits, large));
}

TEST_F(FirmwareSearch, LeavesOutAFileThatNamesTooManyDevices) {
  std::vector<std::uint16_t> devices(65'000);
  std::iota(devices.begin(), devices.end(), std::uint16_t{1});
  const std::string path =
      makeFile("first/a.rom",
               RomBuilder().add(RomImage::efi().units(258).deviceList(std::move(devices))).build());

  EXPECT_THAT(look().problems, ElementsAre(leftOut(path, "it names more than 1024 devices")));
}

TEST_F(FirmwareSearch, LooksAtABoundedNumberOfFiles) {
  constexpr std::size_t kMost = inventory::FirmwareSearch::kMostFiles;
  makeFile("first/z.rom", firmware(1));
  for (std::size_t i = 0; i < kMost; ++i) {
    makeFile("first/" + std::to_string(1000 + i), Bytes());
  }
  makeFile("second/a.rom", firmware(1));

  const Findings& found = look();

  EXPECT_THAT(found.paths, IsEmpty());
  EXPECT_THAT(found.problems, SizeIs(kMost + 2));
  EXPECT_THAT(found.problems[0],
              "Firmware directory '" + firstDirectory().string() +
                  "' has too many files: the last 1 by name are left out, since no more than 1000 "
                  "are looked at in all directories");
  EXPECT_THAT(found.problems.back(), HasSubstr("the last 1 by name are left out"));
}

TEST(ReadFirmwareFile, HasNoBytesWhereNothingIs) {
  const test::TempDirectory directory;

  EXPECT_THAT(inventory::readFirmwareFile(directory.path().generic_string() + "/none"),
              Optional(Bytes()));
  EXPECT_THAT(inventory::readFirmwareFile(directory.path().generic_string()), Optional(Bytes()));
}

TEST_F(FirmwareSearch, EndsWhenNobodyWantsMore) {
  makeFile("first/a.rom", firmware(1));
  makeFile("first/b.rom", firmware(1));
  Findings findings;
  findings.enough = 1;
  m_search.look(m_config, findings);

  EXPECT_THAT(findings.paths, SizeIs(1));
}

}  // namespace
