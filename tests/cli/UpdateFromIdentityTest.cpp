// `quorvel update --identity`; what it shares with an update from a file is in UpdateCommandTest.

#include <nlohmann/json.hpp>

#include "tests/cli/FirmwareDirectoryFixture.h"

namespace {

using test::ProgramResult;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kAdapter = "0000:03:00";

class UpdateFromIdentityTest : public test::FirmwareDirectoryFixture {
 protected:
  [[nodiscard]] Arguments update(const std::string& identity) const {
    return configured({"update", kAdapter, "--identity", identity});
  }
  [[nodiscard]] Arguments forced(const std::string& identity) const {
    Arguments arguments = update(identity);
    arguments.emplace_back("--force");
    return arguments;
  }
};

TEST_F(UpdateFromIdentityTest, InstallsTheFileAndSaysSo) {
  addPxeAdapter(kAdapter);
  const std::string file = addFile("new.rom", {pxe(3)});
  const ProgramResult result = run(update("new.rom"));
  EXPECT_EQ(result.exitStatus, 0) << result.errors;
  EXPECT_THAT(result.output, EndsWith("\nCompleted: 0000:03:00 is updated (00:00)\n"));
  EXPECT_EQ(flash(), test::readBytes(file));
}

TEST_F(UpdateFromIdentityTest, TakesAnyNameAndPrintsTheSameDocument) {
  addPxeAdapter(kAdapter);
  const std::string file = addFile("new.rom", {pxe(3)});
  const Json identity = runJson(configured({"identities"}))[0];
  for (const std::string& name :
       {file, std::string(identity["instanceId"]), std::string(identity["path"])}) {
    const Json document = runJson(update(name));
    EXPECT_EQ(document["returnValue"], 4096) << name;
    EXPECT_EQ(document["job"]["JobState"], 7);
  }
  EXPECT_EQ(runJson(configured({"identities"}))[0]["adapters"][0]["state"], "same");
}

TEST_F(UpdateFromIdentityTest, FollowsACheckOfAnotherProcess) {
  addPxeAdapter(kAdapter);
  const std::string file = addFile("new.rom", {pxe(3)});
  ASSERT_EQ(run(configured({"check", kAdapter, file})).exitStatus, 0);
  EXPECT_EQ(run(update(file)).exitStatus, 0);
  EXPECT_EQ(flash(), test::readBytes(file));
}

TEST_F(UpdateFromIdentityTest, RefusesADowngradeUnlessItIsForced) {
  addPxeAdapter(kAdapter);
  const std::string file = addFile("older.rom", {pxe(1)});
  expectFailure(update(file),
                AllOf(StartsWith("quorvel: update of 0000:03:00 refused: 4099, "),
                      HasSubstr("Downgrade was detected"), HasSubstr("update with --force")));
  EXPECT_EQ(runJson(update(file), 1), (Json{{"returnValue", 4099},
                                            {"returnText", "Downgrade/reinstall not supported"},
                                            {"job", nullptr}}));
  EXPECT_EQ(run(forced(file)).exitStatus, 0);
  EXPECT_EQ(flash(), test::readBytes(file));
}

TEST_F(UpdateFromIdentityTest, PointsToTheFileForOtherImageTypes) {
  addPxeAdapter(kAdapter);
  const std::string file = addFile("both.rom", {pxe(3), uefi(3)});
  const std::string advice = "quorvel update TARGET " + file + " --types IMG_PXE+IMG_UEFI\n";
  expectFailure(update(file), AllOf(HasSubstr("refused: 4099"), HasSubstr(advice)));
  expectFailure(forced(file), AllOf(HasSubstr("refused: 4099"), HasSubstr(advice)));
  EXPECT_EQ(run({"update", kAdapter, file, "--types", "IMG_PXE+IMG_UEFI"}).exitStatus, 0);
}

TEST_F(UpdateFromIdentityTest, RefusesAComponentThatIsInstalled) {
  addPxeAdapter(kAdapter);
  const test::Bytes before = flash();
  expectFailure(update("Orvex:InstalledFirmware:0000:03:00/0"),
                AllOf(StartsWith("quorvel: update of 0000:03:00 refused: 5, Invalid Parameter\n"
                                 "  reason: Orvex:InstalledFirmware:0000:03:00/0 is a component "),
                      HasSubstr("\n  next: name another; ")));
  EXPECT_EQ(flash(), before);
}

TEST_F(UpdateFromIdentityTest, MissesAFileThatVanished) {
  addPxeAdapter(kAdapter);
  const std::string file = addFile("new.rom", {pxe(3)});
  const std::string path = runJson(configured({"identities"}))[0]["path"];
  std::filesystem::remove(file);
  for (const std::string& name : {file, path}) {
    expectFailure(update(name), HasSubstr("there is no software identity '" + name +
                                          "'; no "
                                          "firmware file was found"));
  }
}

}  // namespace
