// What the program does with the paths, the settings and the line ends of Windows.

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <process.h>
#include <string>
#include <vector>
#include <windows.h>

#include "platform/Texts.h"
#include "platform/Windows/Handle.h"
#include "tests/support/CurrentDirectory.h"
#include "tests/support/QuorvelFixture.h"
#include "tests/support/Regex.h"
#include "tests/support/Settings.h"
#include "tests/support/Windows/OtherProgram.h"
#include "tests/support/Windows/Umlauts.h"

namespace {

using test::ProgramResult;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr const char* kPort = "0000:03:00.0";

class WindowsProgramTest : public test::QuorvelFixture {
 protected:
  WindowsProgramTest() { addPxeAdapter("0000:03:00"); }

  // Updates from the file `rom`, which is named by `image`.
  void expectUpdate(const std::string& image, const std::filesystem::path& rom) {
    const ProgramResult result = run({"update", kPort, image});
    EXPECT_EQ(result.exitStatus, 0) << result.errors;
    EXPECT_EQ(result.errors, "");
    EXPECT_THAT(result.output,
                test::ContainsRegex("\nCompleted: 0000:03:00.0 is updated \\(00:0[0-9]\\)\n$"));
    EXPECT_EQ(flash(), test::readBytes(rom));
  }

  // Runs the program with arguments that the code page of this test may lack. Returns its status.
  [[nodiscard]] intptr_t runWide(const std::vector<std::wstring>& arguments) const {
    for (const test::EnvironmentChange& change : environment()) {
      SetEnvironmentVariableA(change.name.c_str(), change.value ? change.value->c_str() : nullptr);
    }
    std::vector<std::wstring> quoted{L"quorvel"};
    for (const std::wstring& argument : arguments) {
      quoted.push_back(L"\"" + argument + L"\"");
    }
    std::vector<const wchar_t*> pointers;
    for (const std::wstring& argument : quoted) {
      pointers.push_back(argument.c_str());
    }
    pointers.push_back(nullptr);
    return _wspawnv(_P_WAIT, test::programBeside("quorvel").c_str(), pointers.data());
  }

  // Writes a file whose name may be any, and returns its path.
  std::filesystem::path write(const std::filesystem::path& name) const {
    return m_files.write(name, test::RomBuilder().add(pxe(3)).build()).make_preferred();
  }
  static std::string textOf(const std::filesystem::path& path) {
    return platform::toText(path).value();
  }

  // Copies the program with its libraries into a folder and returns its path there.
  [[nodiscard]] std::filesystem::path install(const std::filesystem::path& name) const {
    const std::filesystem::path folder = m_files.path() / name;
    std::filesystem::create_directory(folder);
    const std::filesystem::path program = test::programBeside("quorvel");
    for (const auto& entry : std::filesystem::directory_iterator(program.parent_path())) {
      if (entry.path().extension() == ".dll") {
        std::filesystem::copy(entry.path(), folder / entry.path().filename());
      }
    }
    std::filesystem::copy(program, folder / program.filename());
    return folder / program.filename();
  }

  test::TempDirectory m_files;
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

// The names that stand for a server and its share are also those of folders on the current drive.
TEST_F(WindowsProgramTest, TakesNoFileOfTheCurrentDriveForThatOfAServer) {
  const test::CurrentDirectory onDrive(m_files.path());
  const std::filesystem::path names = std::filesystem::path("quorvel-test-server") / "share";
  const std::filesystem::path root = m_files.path().root_path();
  const std::filesystem::path folder = root / names;
  std::filesystem::create_directories(folder);
  std::filesystem::copy(write("new.rom"), folder / "new.rom",
                        std::filesystem::copy_options::overwrite_existing);
  const test::Bytes before = flash();

  const std::string image = "\\\\quorvel-test-server\\share\\new.rom";
  expectFailure({"update", kPort, image}, HasSubstr("there is no file '" + image + "'"));
  EXPECT_EQ(flash(), before);
  std::filesystem::remove_all(folder.parent_path());
}

TEST_F(WindowsProgramTest, UpdatesFromPathsAndUrisWithUmlauts) {
  test::demandWesternCodePage();
  const std::filesystem::path rom =
      write(std::filesystem::path(L"gr\u00F6\u00DFe") / test::kUmlautPath);
  expectUpdate(textOf(rom), rom);
  expectUpdate("file://" + textOf(rom), rom);
  const test::CurrentDirectory inside(rom.parent_path());
  expectUpdate(test::kUmlautText, rom);
}

TEST_F(WindowsProgramTest, NamesAMissingFileWithAnUmlautAsItWasGiven) {
  test::demandWesternCodePage();
  const std::string missing = path("").string() + test::kUmlautText;
  expectFailure({"update", kPort, missing},
                HasSubstr("there is no file '" + platform::toUtf8(missing) + "'; check the path"));
}

TEST_F(WindowsProgramTest, RefusesAFileInADirectoryThatTheCodePageHasNoNameFor) {
  test::demandWesternCodePage();
  const std::filesystem::path rom = write(std::filesystem::path(L"\u0101") / "new.rom");
  write("a/new.rom");
  const test::CurrentDirectory inside(rom.parent_path());
  const ProgramResult result = test::runProgram(test::programBeside("quorvel_in_code_page"),
                                                {"update", kPort, "new.rom"}, environment());
  EXPECT_EQ(result.exitStatus, 1);
  EXPECT_THAT(result.errors,
              HasSubstr("has characters that the code page of this system lacks; put the image "
                        "into a directory with another name"));
}

TEST_F(WindowsProgramTest, UpdatesFromNamesInAnyScript) {
  const std::filesystem::path name = L"\u0101 \u0436\u6F22";
  const std::filesystem::path rom = write(name / "new.rom");
  write("a/new.rom");
  {
    const test::CurrentDirectory inside(rom.parent_path());
    expectUpdate("new.rom", rom);
  }
  const std::filesystem::path other =
      m_files.write(name / L"\u6F22.rom", test::RomBuilder().add(pxe(4)).build());
  EXPECT_EQ(runWide({L"update", L"0000:03:00.0", other.native()}), 0);
  EXPECT_EQ(flash(), test::readBytes(other));
}

TEST_F(WindowsProgramTest, ListsFirmwareFilesWithNamesInAnyScript) {
  test::Settings settings(test::SettingsScope::Machine);
  const std::filesystem::path rom = write(L"\u0436\u6F22.rom");
  settings.write({{"FWFilePath", m_files.path().string()}});

  EXPECT_EQ(runJson({"identities"})[0]["file"],
            rom.parent_path().generic_string() + "/\xD0\xB6\xE6\xBC\xA2.rom");
}

TEST_F(WindowsProgramTest, LooksIntoDirectoriesWithNamesInAnyScript) {
  test::Settings settings(test::SettingsScope::Machine);
  settings.write({{"Timeout", 100U}});
  const std::filesystem::path folder = write(L"\u0436\u6F22/new.rom").parent_path();
  const std::wstring text = folder.native();
  ASSERT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\ZOLAN\\Network_Services\\Quorvel",
                            L"FWFilePath", REG_SZ, text.c_str(),
                            static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))),
            ERROR_SUCCESS);

  EXPECT_EQ(runJson({"identities"})[0]["file"],
            m_files.path().generic_string() + "/\xD0\xB6\xE6\xBC\xA2/new.rom");
}

TEST_F(WindowsProgramTest, SaysThatTheImageIsInUse) {
  const std::string rom = writeRom("new.rom", {pxe(3)});
  const platform::Handle kept(CreateFileW(platform::toPath(rom).c_str(), GENERIC_READ, 0, nullptr,
                                          OPEN_EXISTING, 0, nullptr));
  ASSERT_NE(kept.get(), INVALID_HANDLE_VALUE);
  expectFailure({"update", kPort, rom},
                AllOf(HasSubstr("it is in use by another program"),
                      HasSubstr("next: end the program that has the file open")));
}

TEST_F(WindowsProgramTest, NamesThoseWhoHaveTheFlashLockOpen) {
  test::Settings settings(test::SettingsScope::Machine);
  settings.write({{"Timeout", 100U}});
  const platform::Handle semaphore(CreateSemaphoreA(nullptr, 1, 1, "Global\\RavlApplySemaphore"));
  test::OtherProgram other;
  ASSERT_TRUE(other.lock());
  const ProgramResult result = run({"update", kPort, writeRom("new.rom", {pxe(3)})});
  EXPECT_EQ(result.exitStatus, 1);
  EXPECT_THAT(result.errors,
              AllOf(HasSubstr("the flash was held by another program; its semaphore is open in "
                              "quorvel_program_test.exe, process " +
                              std::to_string(GetCurrentProcessId())),
                    HasSubstr("next: wait until"), HasSubstr("end them all")));
}

TEST_F(WindowsProgramTest, UpdatesFromPathsOfAnyLength) {
  const std::filesystem::path folder = m_files.path() / std::string(150, 'a');
  const std::filesystem::path rom = folder / (std::string(150, 'b') + ".rom");
  const std::filesystem::path image = write("new.rom");
  std::filesystem::create_directory(folder);
  ASSERT_NE(CopyFileW(image.c_str(), (LR"(\\?\)" + rom.native()).c_str(), TRUE), FALSE);
  expectUpdate(rom.string(), image);
  DeleteFileW((LR"(\\?\)" + rom.native()).c_str());
}

TEST_F(WindowsProgramTest, SpeaksInItsHelpOfWhatThereIsOnWindows) {
  for (const std::string command : {"adapters", "associations", "check", "classes", "identities",
                                    "instances", "invoke", "jobs", "update", "watch", ""}) {
    const ProgramResult result = command.empty() ? run({"--help"}) : run({command, "--help"});
    EXPECT_EQ(result.exitStatus, 0) << command;
    for (const char* word :
         {"--host", "--reserve", "/srv", "/etc", "/var", "/tmp", "/usr", "Linux", "system log",
          "\"$", "\\\n", "'Orvex", "assword", "./quorvel.conf", "Examples:\n\n"}) {
      EXPECT_THAT(result.output, Not(HasSubstr(word))) << command;
    }
  }
  EXPECT_THAT(run({"update", "--help"}).output, HasSubstr("file://C:/firmware/older.rom"));
  EXPECT_THAT(run({"jobs"}).output, EndsWith(" and end with it.\n"));
  EXPECT_THAT(run({"--help"}).output, AllOf(HasSubstr("event log"), Not(HasSubstr("watch"))));
  EXPECT_THAT(run({"adapters", "add", "--help"}).output, Not(HasSubstr("/usr")));
}

TEST_F(WindowsProgramTest, TakesNamesOfAdaptersInAnyScript) {
  const std::filesystem::path folder = m_files.path() / L"\u6F22";
  const std::filesystem::path rom = write("new.rom");
  EXPECT_EQ(runWide({L"adapters", L"add", L"--adapters", folder.native(), L"--pci", L"0000:05:00",
                     L"--vendor", L"1af4", L"--device", L"1041", L"--name", L"\u0436\u6F22",
                     L"--rom", rom.native()}),
            0);
  EXPECT_TRUE(std::filesystem::exists(folder / "0000-05-00" / "adapter.json"));
  std::filesystem::copy(folder / "0000-05-00", adapters() / "0000-05-00");

  constexpr const char* kName = "\xD0\xB6\xE6\xBC\xA2";
  EXPECT_EQ(runJson({"adapters"})[1]["name"], kName);
  EXPECT_THAT(run({"adapters"}).output, HasSubstr(kName));
}

TEST_F(WindowsProgramTest, NamesNoHostsWhereAJobIsMissing) {
  expectFailure({"watch", "1"}, EndsWith("jobs of this program end with it\n"));
}

TEST_F(WindowsProgramTest, TakesAPathThatBeginsWithASlashForAPath) {
  for (const std::string image : {"/quorvel-none.rom", "/json", "/?"}) {
    expectFailure({"update", kPort, image}, AllOf(HasSubstr("refused: 5, Invalid Parameter"),
                                                  HasSubstr("there is no file '")));
  }
}

TEST_F(WindowsProgramTest, WorksOnAdaptersInADirectoryWithAnUmlaut) {
  test::demandWesternCodePage();
  const std::filesystem::path folder = m_files.path() / test::kUmlautPath;
  const std::string text = textOf(folder);
  const std::string rom = textOf(write(test::kUmlautPath / std::filesystem::path("new.rom")));
  const Arguments add{"adapters", "add",  "--adapters", text,   "--pci",  "0000:05:00",
                      "--vendor", "1af4", "--device",   "1041", "--name", test::kUmlautText,
                      "--rom",    rom};
  EXPECT_THAT(run(add).output, HasSubstr("Added to " + platform::toUtf8(text) + ":\n"));
  EXPECT_TRUE(std::filesystem::exists(folder / "0000-05-00" / "flash.rom"));
  EXPECT_THAT(run({"adapters", "--adapters", text}).output, HasSubstr(test::kUmlautUtf8));
  EXPECT_EQ(runJson({"adapters", "--adapters", text})[0]["name"], test::kUmlautUtf8);
}

TEST_F(WindowsProgramTest, ListsFirmwareFilesWithUmlautsInUtf8) {
  test::demandWesternCodePage();
  test::Settings settings(test::SettingsScope::Machine);
  const std::filesystem::path rom = write(test::kUmlautPath);
  settings.write({{"FWFilePath", m_files.path().string()}});

  EXPECT_EQ(runJson({"identities"})[0]["file"],
            rom.parent_path().generic_string() + "/" + test::kUmlautUtf8);
  EXPECT_EQ(run({"update", kPort, "--identity", test::kUmlautText}).exitStatus, 0);
  EXPECT_EQ(flash(), test::readBytes(rom));
}

TEST_F(WindowsProgramTest, RunsFromAFolderWithAnUmlaut) {
  test::demandWesternCodePage();
  const std::filesystem::path program = install(L"gr\u00F6\u00DFe");
  const ProgramResult result = test::runProgram(program, {"classes"}, environment());
  EXPECT_EQ(result.errors, "");
  EXPECT_THAT(result.output, HasSubstr("Orvex_SoftwareInstallationService"));
  EXPECT_EQ(result.exitStatus, 0);
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
