// Firmware files with names beyond ASCII, with long paths, and that are in use.

#include <gmock/gmock.h>
#include <string>
#include <windows.h>

#include "platform/Windows/Handle.h"
#include "platform/Windows/SystemPath.h"
#include "tests/inventory/FirmwareFilesFixture.h"
#include "tests/support/Windows/Umlauts.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class WindowsFirmwareFiles : public test::FirmwareFilesFixture {
 protected:
  void SetUp() override { test::demandWesternCodePage(); }
};

TEST_F(WindowsFirmwareFiles, AreFoundByTheirTextsInTheCodePage) {
  const auto folder = m_directory.path() / L"gr\u00F6\u00DFe";
  m_directory.write(folder / test::kUmlautPath, firmware(1));
  configure(m_directory.path().string() +
            "\\gr\xF6\xDF"
            "e");
  const std::string named = m_directory.path().generic_string() +
                            "/gr\xF6\xDF"
                            "e/" +
                            test::kUmlautText;

  EXPECT_THAT(find(), ElementsAre(named));
  EXPECT_THAT(problems(), IsEmpty());
  EXPECT_THAT(inventory::readFirmwareFile(named), testing::Optional(firmware(1)));
}

TEST_F(WindowsFirmwareFiles, WithoutATextAreReportedInsteadOfTheirLikenesses) {
  const std::string likeness = makeFile(std::string("first/") + test::kMacronLikeness, firmware(1));
  m_directory.write(firstDirectory() / test::kMacronPath, firmware(2));

  EXPECT_THAT(find(), ElementsAre(likeness));
  const std::string shown = (firstDirectory() / test::kMacronLikeness).string();
  EXPECT_THAT(problems(),
              ElementsAre(leftOut(
                  shown, "its path has characters that the code page of this system lacks")));
}

TEST_F(WindowsFirmwareFiles, MayHavePathsOfAnyLength) {
  const auto folder = firstDirectory() / std::string(150, 'a');
  const auto file = folder / (std::string(150, 'b') + ".rom");
  std::filesystem::create_directory(folder);
  const auto native = platform::toSystemPath(file);
  ASSERT_NE(CopyFileW(m_directory.write("image", firmware(1)).c_str(), native.c_str(), TRUE),
            FALSE);
  configure(folder.string());

  EXPECT_THAT(find(), ElementsAre(file.generic_string()));
  EXPECT_THAT(problems(), IsEmpty());
  EXPECT_THAT(inventory::readFirmwareFile(file.string()), testing::Optional(firmware(1)));
  DeleteFileW(native.c_str());
}

TEST_F(WindowsFirmwareFiles, ThatAreInUseAreReportedAsSuch) {
  const std::string file = makeFile("first/a.rom", firmware(1));
  const platform::Handle kept(
      CreateFileA(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
  ASSERT_NE(kept.get(), INVALID_HANDLE_VALUE);

  EXPECT_THAT(find(), IsEmpty());
  EXPECT_THAT(problems(), ElementsAre(leftOut(file, "it is in use by another program")));
}

}  // namespace
