#include <nlohmann/json.hpp>

#include "tests/support/PldmBuilder.h"
#include "tests/support/QuorvelFixture.h"
#include "tests/support/Regex.h"
#include "tests/support/Settings.h"

namespace {

using test::MatchesRegex;
using test::PldmBuilder;
using test::PldmDevice;
using test::PldmImage;
using test::ProgramResult;
using testing::AllOf;
using testing::HasSubstr;

class ShowCommandTest : public test::QuorvelFixture {};

TEST_F(ShowCommandTest, TellsWhatAnOptionRomIsToEachAdapter) {
  addPxeAdapter("0000:03:00", 2);
  addAdapter("0000:04:00", writeRom("both.rom", {pxe(2), uefi(2)}));
  const std::string rom = writeRom("new.rom", {pxe(3)});
  const ProgramResult result = run({"show", rom});
  EXPECT_EQ(result.exitStatus, 0);
  EXPECT_EQ(result.errors, "");
  EXPECT_THAT(result.output,
              MatchesRegex(test::quoteRegex(rom) +
                           "\n"
                           "  format       option ROM\n"
                           "  version      3\\.0\n"
                           "  size         1024 bytes\n"
                           "  digest       [0-9a-f]{16}\n"
                           "  devices      1af4:1041\n"
                           "  image types  IMG_PXE\n"
                           "  drivers      cxgb4\n"
                           "\n"
                           "COMPONENT  VERSION  BYTES  KIND          TAKES EFFECT BY\n"
                           "IMG_PXE    3\\.0      1024   PC BIOS code  system reboot\n"
                           "\n"
                           "ADAPTER     STATE        NAME\n"
                           "0000:03:00  newer        Virtual adapter\n"
                           "0000:04:00  other types  Virtual adapter\n"));
}

TEST_F(ShowCommandTest, TellsWhatAPackageIs) {
  addPxeAdapter("0000:03:00");
  const std::string file = writeFile("a.pldm", PldmBuilder()
                                                   .add(PldmDevice(0x8086, 0x1592).takes({0}))
                                                   .add(PldmImage(test::Bytes(700, 0x11)))
                                                   .build()
                                                   .bytes);
  const Json document = runJson({"show", file});
  EXPECT_EQ(document["file"], file);
  EXPECT_EQ(document["format"], "PLDM firmware package");
  EXPECT_EQ(document["version"], "2026.11");
  EXPECT_EQ(document["devices"], Json::array({"8086:1592"}));
  EXPECT_EQ(document["components"][0]["name"], "fw.undi (component 5)");
  EXPECT_EQ(document["adapters"][0]["adapter"], "0000:03:00");
  EXPECT_EQ(document["adapters"][0]["state"], "not for it");
  EXPECT_EQ(document["adapters"][0]["reason"], "virtual adapters take option ROMs alone");
}

TEST_F(ShowCommandTest, TellsWhyAnOptionRomIsForOthers) {
  addPxeAdapter("0000:03:00");
  const Json document = runJson({"show", writeRom("other.rom", {pxe(3).device(0x10EC, 0x8139)})});
  EXPECT_EQ(document["devices"], Json::array({"10ec:8139"}));
  EXPECT_EQ(document["adapters"][0]["state"], "not for it");
  EXPECT_EQ(document["adapters"][0]["reason"], "it is 1af4:1041, which the file does not name");
}

TEST_F(ShowCommandTest, TellsWhatIsWrongWithADamagedFile) {
  addPxeAdapter("0000:03:00");
  const ProgramResult result = run({"show", writeDamagedRom("damaged.rom")});
  EXPECT_EQ(result.exitStatus, 0);
  EXPECT_THAT(result.output, AllOf(HasSubstr("  damaged      image 0 at 0x00: byte sum"),
                                   HasSubstr("0000:03:00  not for it  Virtual adapter\n"),
                                   HasSubstr("Reasons:\n  0000:03:00: the file is damaged\n")));
  EXPECT_THAT(run({"show", writeFile("other", test::Bytes(9, 1))}).output,
              HasSubstr("  format       unknown format\n"));
}

TEST_F(ShowCommandTest, SaysWhereThereAreNoAdapters) {
  EXPECT_THAT(run({"show", writeRom("new.rom", {pxe(3)})}).output,
              HasSubstr("\n\nThere are no adapters to compare it with.\n"));
}

TEST_F(ShowCommandTest, RefusesWhatIsNoFirmwareFile) {
  const std::string missing = path("missing.rom").string();
  expectFailure({"show", missing},
                HasSubstr("quorvel: there is no file '" + missing + "'; check the path\n"));
  expectFailure({"show", path("").string()}, HasSubstr("is a directory; name the image file"));
}

TEST_F(ShowCommandTest, RefusesAFileThatIsTooLarge) {
  test::Settings settings(test::SettingsScope::Machine);
  settings.write({{"MaxImageSize", std::uint32_t{1023}}});
  Arguments arguments = settings.options();
  arguments.insert(arguments.end(), {"show", writeRom("new.rom", {pxe(3)})});
  expectFailure(arguments, HasSubstr("is too large: its 1024 bytes are more than MaxImageSize"));
}

TEST_F(ShowCommandTest, RefusesWrongUsage) {
  expectUsageFault({"show"}, HasSubstr("FILE is required"));
  expectUsageFault({"show", ""}, HasSubstr("must not be empty"));
  expectUsageFault({"show", "a.rom", "b.rom"}, HasSubstr("b.rom"));
  expectUsageFault({"show", "a.rom", "--host=http://127.0.0.1:1"},
                   HasSubstr("'show' does not go with --host: it reads a file of this machine"));
}

}  // namespace
