#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/cli/FirmwareDirectoryFixture.h"
#include "tests/support/Regex.h"

namespace {

using test::ContainsRegex;
using test::ProgramResult;
using test::quoteRegex;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class IdentitiesCommandTest : public test::FirmwareDirectoryFixture {
 protected:
  [[nodiscard]] ProgramResult show() const { return run(configured({"identities"})); }
  [[nodiscard]] Json showJson() const { return runJson(configured({"identities"})); }

  // Returns the state of the only file to the only adapter.
  [[nodiscard]] std::string state() const { return showJson()[0]["adapters"][0]["state"]; }
};

TEST_F(IdentitiesCommandTest, ComparesEachFileWithEachAdapter) {
  addPxeAdapter("0000:03:00", 2);
  addAdapter("0000:04:00", writeRom("four.rom", {pxe(3)}));
  const std::string file = addFile("new.rom", {pxe(3)});
  const ProgramResult result = show();
  EXPECT_EQ(result.exitStatus, 0);
  EXPECT_EQ(result.errors, "");
  const std::string gap(file.size() - std::string("IDENTITY").size(), ' ');
  EXPECT_EQ(result.output, "IDENTITY" + gap + "  VERSION  TYPES    ADAPTER     STATE\n" + file +
                               "  3.0      IMG_PXE  0000:03:00  newer\n" + file +
                               "  3.0      IMG_PXE  0000:04:00  same\n");
}

TEST_F(IdentitiesCommandTest, GivesAFileThatIsForNoAdapterOneLine) {
  addPxeAdapter("0000:03:00");
  const std::string file = addFile("other.rom", {pxe(3).device(0x8086, 0x100E)});
  EXPECT_THAT(show().output, HasSubstr("  IMG_PXE  0000:03:00  not for it\n"));
  addPxeAdapter("0000:04:00");
  EXPECT_THAT(show().output,
              AllOf(HasSubstr("\n" + file + "  3.0      IMG_PXE  all      not for it\n"),
                    Not(HasSubstr("0000:0"))));
}

TEST_F(IdentitiesCommandTest, TellsTheStatesApart) {
  addPxeAdapter("0000:03:00");
  const std::string name = "a.rom";
  static_cast<void>(addFile(name, {pxe(1)}));
  EXPECT_EQ(state(), "older");
  static_cast<void>(addFile(name, {pxe(2)}));
  EXPECT_EQ(state(), "same");
  static_cast<void>(addFile(name, {pxe(2).units(9)}));
  EXPECT_EQ(state(), "same version");
  static_cast<void>(addFile(name, {pxe(3), uefi(3)}));
  EXPECT_EQ(state(), "other types");
  static_cast<void>(addFile(name, {pxe(3).device(0x8086, 0x100E)}));
  EXPECT_EQ(state(), "not for it");
  static_cast<void>(addFile(name, {pxe(3)}));
  describe("0000-03-00", {{"updatable", false}});
  EXPECT_EQ(state(), "not updatable");
}

TEST_F(IdentitiesCommandTest, PrintsADocument) {
  addPxeAdapter("0000:03:00");
  const std::string file = addFile("both.rom", {pxe(3), uefi(4)});
  const Json document = showJson();
  EXPECT_EQ(
      document,
      Json::array(
          {{{"file", file},
            {"instanceId", "Orvex:FirmwareFile:" + file},
            {"path", "Orvex_SoftwareIdentity.InstanceID=\"Orvex:FirmwareFile:" + file + "\""},
            {"version", "3.0+4.0"},
            {"types", {"IMG_PXE", "IMG_UEFI"}},
            {"devices", Json::array({"1af4:1041"})},
            {"adapters", Json::array({{{"adapter", "0000:03:00"}, {"state", "other types"}}})}}}));
  EXPECT_THAT(runJson(configured({"associations", document[0]["path"]}))["associations"],
              Not(IsEmpty()));
}

TEST_F(IdentitiesCommandTest, ListsTheFilesWhereThereIsNoAdapter) {
  const std::string file = addFile("both.rom", {pxe(3), uefi(3)});
  EXPECT_THAT(show().output, AllOf(ContainsRegex("^IDENTITY +VERSION  TYPES +DEVICES\n"),
                                   HasSubstr(file + "  3.0      IMG_PXE+IMG_UEFI  1af4:1041\n"),
                                   HasSubstr("\nThere are no adapters to compare them with.\n")));
  EXPECT_THAT(showJson()[0]["adapters"], IsEmpty());
}

TEST_F(IdentitiesCommandTest, SaysWhereItLooksWhenItFindsNone) {
  addPxeAdapter("0000:03:00");
  const bool isPosix = std::filesystem::path::preferred_separator == '/';
  const std::string example = isPosix ? "/srv/firmware" : "C:\\firmware";
  for (const std::string& directories :
       {path("firmware").string(), path("missing").string(), std::string()}) {
    lookIn(directories);
    const ProgramResult result = show();
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.output,
              "No firmware file was found. FWFilePath in " + settings().place() +
                  " names the directories to look in, separated by ';' (FWFilePath = " + example +
                  "); one that does not exist is passed over.\n");
    EXPECT_THAT(showJson(), IsEmpty());
  }
}

TEST_F(IdentitiesCommandTest, NamesTheFilesThatItPassesOver) {
  addPxeAdapter("0000:03:00");
  const std::string sound = addFile("sound.rom", {pxe(3)});
  const std::string damaged = named(writeDamagedRom("firmware/damaged.rom"));
  const std::string empty = named(path("firmware/empty.rom"));
  std::ofstream{empty};
  const ProgramResult result = show();
  EXPECT_EQ(result.exitStatus, 0);
  EXPECT_THAT(result.output, AllOf(HasSubstr(sound), Not(HasSubstr(damaged))));
  EXPECT_THAT(result.errors, test::MatchesRegex("skipped: [^\n]*" + quoteRegex(damaged) +
                                                "[^\n]*: [^\n]+\nskipped: [^\n]*" +
                                                quoteRegex(empty) + "[^\n]*: [^\n]+\n"));
  EXPECT_THAT(showJson(), SizeIs(1));
}

TEST_F(IdentitiesCommandTest, ListsRealRoms) {
  const std::filesystem::path directory = "/usr/lib/ipxe/qemu";
  if (!std::filesystem::exists(directory / "pxe-virtio.rom")) {
    GTEST_SKIP() << directory << " is not installed (package ipxe-qemu)";
  }
  lookIn(directory.string());
  addAdapter("0000:03:00", (directory / "pxe-virtio.rom").string());
  EXPECT_THAT(show().output,
              AllOf(HasSubstr("pxe-virtio.rom    0.1      IMG_PXE           0000:03:00  same\n"),
                    HasSubstr("efi-virtio.rom    0.1+0.0  IMG_PXE+IMG_UEFI  0000:03:00  other "
                              "types\n")));
}

TEST_F(IdentitiesCommandTest, TakesNoArguments) {
  expectUsageFault({"identities", "a.rom"}, HasSubstr("a.rom"));
}

}  // namespace
