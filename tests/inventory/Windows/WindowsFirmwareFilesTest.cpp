// Firmware files with names beyond ASCII.

#include <gmock/gmock.h>
#include <string>

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

}  // namespace
