#include <nlohmann/json.hpp>

#include "tests/cli/FirmwareDirectoryFixture.h"
#include "tests/support/Regex.h"

namespace {

using test::ProgramResult;
using testing::AllOf;
using testing::HasSubstr;

constexpr const char* kAdapter = "0000:03:00";

class CheckCommandTest : public test::FirmwareDirectoryFixture {
 protected:
  [[nodiscard]] Arguments check(const std::string& target, const std::string& identity) const {
    return configured({"check", target, identity});
  }

  // Checks as text and as a document.
  void expectRefusal(const std::string& identity, unsigned returnValue,
                     const testing::Matcher<std::string>& explanation) {
    expectFailure(check(kAdapter, identity),
                  AllOf(HasSubstr("quorvel: check of " + identity +
                                  " for 0000:03:00 refused: " + std::to_string(returnValue) + ", "),
                        HasSubstr("\n  reason: "), explanation, HasSubstr("\n  next: ")));
    const Json document = runJson(check(kAdapter, identity), 1);
    EXPECT_EQ(document["returnValue"], returnValue);
    EXPECT_EQ(document["installCharacteristics"], Json::array());
  }
};

TEST_F(CheckCommandTest, SaysWhatAnInstallationTakes) {
  addPxeAdapter(kAdapter, 2);
  const test::Bytes before = flash();
  const std::string file = addFile("new.rom", {pxe(3)});
  const ProgramResult result = run(check(kAdapter, file));
  EXPECT_EQ(result.exitStatus, 0) << result.errors;
  EXPECT_EQ(result.output, file + " can be installed on 0000:03:00: no reboot required\n");
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(runJson(check("0000:03:00.1", file)),
            Json({{"returnValue", 0},
                  {"returnText", "Completed with No Error"},
                  {"installCharacteristics", Json::array({7})}}));
  EXPECT_EQ(flash(), before);
}

TEST_F(CheckCommandTest, TakesAnyNameOfAnIdentity) {
  addPxeAdapter(kAdapter);
  const std::string file = addFile("new.rom", {pxe(3)});
  const Json identity = runJson(configured({"identities"}))[0];
  for (const std::string& name : {file, std::string("new.rom"), std::string(identity["instanceId"]),
                                  std::string(identity["path"])}) {
    EXPECT_EQ(run(check(kAdapter, name)).exitStatus, 0) << name;
  }
}

TEST_F(CheckCommandTest, LeavesNothingReserved) {
  addPxeAdapter(kAdapter);
  const std::string file = addFile("new.rom", {pxe(3)});
  EXPECT_EQ(run(check(kAdapter, file)).exitStatus, 0);
  EXPECT_EQ(run(check(kAdapter, file)).exitStatus, 0);
  EXPECT_EQ(run({"update", kAdapter, file}).exitStatus, 0);
  EXPECT_EQ(flash(), test::readBytes(file));
}

TEST_F(CheckCommandTest, TellsWhyAnInstallationWouldBeRefused) {
  addPxeAdapter(kAdapter);
  expectRefusal(addFile("older.rom", {pxe(1)}), 4099,
                AllOf(HasSubstr("Downgrade was detected"), HasSubstr("update with --force")));
  const std::string both = addFile("both.rom", {pxe(3), uefi(3)});
  expectRefusal(both, 4099,
                AllOf(HasSubstr("does not contain the same image types"),
                      HasSubstr("quorvel update TARGET " + both + " --types IMG_PXE+IMG_UEFI\n")));
  expectRefusal(addFile("other.rom", {pxe(3).device(0x10EC, 0x8139)}), 4097,
                HasSubstr("for another device"));
  describe("0000-03-00", {{"updatable", false}});
  expectRefusal(addFile("new.rom", {pxe(3)}), 4106, HasSubstr("cannot be replaced"));
}

TEST_F(CheckCommandTest, RefusesAComponentThatIsInstalled) {
  addPxeAdapter(kAdapter);
  expectRefusal("Orvex:InstalledFirmware:0000:03:00/0", 5,
                AllOf(HasSubstr("Invalid Parameter\n"),
                      HasSubstr("is a component that is installed on an adapter"),
                      HasSubstr("'quorvel identities'")));
}

TEST_F(CheckCommandTest, ListsTheFilesWhenTheIdentityIsUnknown) {
  addPxeAdapter(kAdapter);
  const std::string file = addFile("new.rom", {pxe(3)});
  const std::string damaged = named(writeDamagedRom("firmware/damaged.rom"));
  for (const std::string& name : {std::string("old.rom"), damaged, std::string()}) {
    expectFailure(check(kAdapter, name),
                  AllOf(HasSubstr("there is no software identity '" + name +
                                  "'; the firmware files are:\n  " + file + "\n"),
                        test::ContainsRegex("\n  skipped: [^\n]*" + test::quoteRegex(damaged))));
  }
  std::filesystem::remove(file);
  expectFailure(check(kAdapter, file), HasSubstr("no firmware file was found"));
}

TEST_F(CheckCommandTest, ListsTheFilesWhenTheIdentityIsAmbiguous) {
  addPxeAdapter(kAdapter);
  const std::string first = addFile("a.rom", {pxe(3)});
  const std::string second = named(writeRom("older/a.rom", {pxe(2)}));
  expectFailure(check(kAdapter, "a.rom"), HasSubstr("'a.rom' names several software identities; "
                                                    "name one of:\n  " +
                                                    first + "\n  " + second + "\n"));
  EXPECT_EQ(run(check(kAdapter, second)).exitStatus, 0);
}

TEST_F(CheckCommandTest, RefusesATargetThatIsNoAdapter) {
  addPxeAdapter(kAdapter);
  const std::string file = addFile("new.rom", {pxe(3)});
  expectFailure(check("0000:09:00", file),
                AllOf(HasSubstr("no adapter or port '0000:09:00'"), HasSubstr(kAdapter)));
  const std::string service =
      runJson({"instances", "Orvex_SoftwareInstallationService"})[0]["path"];
  expectFailure(check(service, file),
                AllOf(HasSubstr("refused: 4106"), HasSubstr("name a port or an adapter")));
}

TEST_F(CheckCommandTest, RefusesWrongUsage) {
  expectUsageFault({"check"}, HasSubstr("TARGET is required"));
  expectUsageFault({"check", kAdapter}, HasSubstr("IDENTITY is required"));
  expectUsageFault({"check", kAdapter, "a.rom", "b.rom"}, HasSubstr("b.rom"));
  expectUsageFault({"check", kAdapter, "a.rom", "--reserve"},
                   HasSubstr("--reserve goes with --host"));
}

}  // namespace
