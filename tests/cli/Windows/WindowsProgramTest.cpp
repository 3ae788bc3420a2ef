// What the program does with the paths, the settings and the line ends of Windows.

#include <fstream>

#include "tests/cli/QuorvelTest.h"
#include "tests/support/CurrentDirectory.h"

namespace {

using test::ProgramResult;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr const char* kPort = "0000:03:00.0";

class WindowsProgramTest : public test::QuorvelTest {
 protected:
  WindowsProgramTest() { addPxeAdapter("0000:03:00"); }

  // Updates from the file `rom`, which is named by `image`.
  void expectUpdate(const std::string& image, const std::string& rom) {
    const ProgramResult result = run({"update", kPort, image});
    EXPECT_EQ(result.exitStatus, 0) << result.errors;
    EXPECT_EQ(result.errors, "");
    EXPECT_THAT(result.output, EndsWith("\nCompleted: 0000:03:00.0 is updated (00:00)\n"));
    EXPECT_EQ(flash(), test::readBytes(rom));
  }
};

TEST_F(WindowsProgramTest, UpdatesFromAPathWithADriveLetter) {
  const std::string rom = writeRom("new.rom", {pxe(3)});
  ASSERT_EQ(rom.substr(1, 2), ":\\");
  expectUpdate(rom, rom);
}

TEST_F(WindowsProgramTest, UpdatesFromAPathWithSlashes) {
  const std::string rom = writeRom("new.rom", {pxe(3)});
  expectUpdate(std::filesystem::path(rom).generic_string(), rom);
}

TEST_F(WindowsProgramTest, UpdatesFromAUriWithADriveLetter) {
  const std::string rom = writeRom("new.rom", {pxe(3)});
  const std::string uri = uriOf(rom);
  ASSERT_THAT(uri, AllOf(StartsWith("file://"), HasSubstr(":/"), Not(HasSubstr("\\"))));
  expectUpdate(uri, rom);
}

TEST_F(WindowsProgramTest, UpdatesFromAUriWithBackslashes) {
  const std::string rom = writeRom("new.rom", {pxe(3)});
  expectUpdate("file://" + rom, rom);
}

TEST_F(WindowsProgramTest, UpdatesFromARelativePath) {
  const std::string rom = writeRom("new.rom", {pxe(3)});
  const test::CurrentDirectory beside(adapters());
  expectUpdate("..\\new.rom", rom);
}

TEST_F(WindowsProgramTest, GivesItsExitStatusToTheCaller) {
  EXPECT_EQ(run({"adapters"}).exitStatus, 0);
  EXPECT_EQ(run({"update", kPort, path("missing.rom").string()}).exitStatus, 1);
  EXPECT_EQ(run({"update", kPort}).exitStatus, 2);
}

TEST_F(WindowsProgramTest, EndsLinesWithOneCarriageReturn) {
  const std::string rom = writeRom("new.rom", {pxe(3)});
  for (const Arguments& arguments :
       {Arguments{"--help"}, Arguments{"adapters"}, Arguments{"adapters", "--json"},
        Arguments{"update", kPort, rom}, Arguments{"update", kPort, rom, "--types", "x"},
        Arguments{"--log-level", "3", "classes"}}) {
    const ProgramResult result = run(arguments);
    EXPECT_THAT(result.output + result.errors, AllOf(HasSubstr("\n"), Not(HasSubstr("\r"))))
        << testing::PrintToString(arguments);
  }
}

TEST_F(WindowsProgramTest, TakesAConfigurationFileWithoutReadingIt) {
  const std::string file = path("quorvel.conf").string();
  std::ofstream(file) << "OEMCustomizeable = 0x20\n";
  const std::string both = writeRom("both.rom", {pxe(3), uefi(3)});
  const ProgramResult result = run({"update", kPort, both, "--force", "--config", file});
  EXPECT_EQ(result.exitStatus, 1);
  EXPECT_THAT(result.errors, HasSubstr("refused: 4099, "));
}

}  // namespace
