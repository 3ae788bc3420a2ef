#include <nlohmann/json.hpp>

#include "tests/support/CurrentDirectory.h"
#include "tests/support/QuorvelFixture.h"
#include "tests/support/Regex.h"

namespace {

using test::ContainsRegex;
using test::MatchesRegex;
using test::ProgramResult;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr const char* kAdapter = "0000:03:00";
constexpr const char* kPort = "0000:03:00.0";

class UpdateCommandTest : public test::QuorvelFixture {
 protected:
  // Runs an update that is refused, as text and as a document.
  void expectRefusal(const Arguments& arguments, unsigned returnValue, const std::string& text,
                     const testing::Matcher<std::string>& explanation) {
    const test::Bytes before = flash();
    expectFailure(arguments, AllOf(HasSubstr(" refused: " + std::to_string(returnValue) + ", " +
                                             text + "\n  reason: "),
                                   explanation, HasSubstr("\n  next: ")));
    const Json document = runJson(arguments, 1);
    EXPECT_EQ(document,
              (Json{{"returnValue", returnValue}, {"returnText", text}, {"job", nullptr}}));
    EXPECT_EQ(flash(), before);
  }
};

TEST_F(UpdateCommandTest, InstallsAnImageAndSaysSo) {
  addPxeAdapter(kAdapter);
  const std::string rom = writeRom("new.rom", {pxe(3)});
  const ProgramResult result = run({"update", kPort, rom});
  EXPECT_EQ(result.exitStatus, 0) << result.errors;
  EXPECT_THAT(result.output, AllOf(StartsWith("updating 0000:03:00.0: "),
                                   EndsWith("updating 0000:03:00.0: 100 %, 00:00\n"
                                            "Completed: 0000:03:00.0 is updated (00:00)\n")));
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(flash(), test::readBytes(rom));
}

TEST_F(UpdateCommandTest, KnowsTheSchemeOfAUriInAnyCase) {
  addPxeAdapter(kAdapter);
  const std::string rom = writeRom("new.rom", {pxe(3)});
  for (const std::string scheme : {"FILE:", "File:"}) {
    const ProgramResult result =
        run({"update", kPort, scheme + uriOf(rom).substr(scheme.size()), "--force"});
    EXPECT_EQ(result.exitStatus, 0) << result.errors;
  }
  EXPECT_EQ(flash(), test::readBytes(rom));
}

TEST_F(UpdateCommandTest, PrintsTheFinishedJobAsADocument) {
  addPxeAdapter(kAdapter);
  const Json document = runJson({"update", kAdapter, writeRom("new.rom", {pxe(3)})});
  std::vector<std::string> names;
  for (const auto& [name, value] : document.items()) {
    names.push_back(name);
  }
  EXPECT_THAT(names, ElementsAre("returnValue", "returnText", "job"));
  EXPECT_EQ(document["returnValue"], 4096);
  EXPECT_EQ(document["returnText"], "Method Parameters Checked - Job Started");
  EXPECT_EQ(document["job"]["JobState"], 7);
  EXPECT_EQ(document["job"]["PercentComplete"], 100);
  EXPECT_EQ(document["job"]["InstanceID"], "Orvex:FirmwareUpdate@Job#1");
  EXPECT_EQ(document["job"]["TimeBeforeRemoval"], "00000000000500.000000:000");
}

TEST_F(UpdateCommandTest, TakesAPortAnAdapterOrAnObjectPath) {
  addPxeAdapter(kAdapter, 2);
  const std::string rom = writeRom("new.rom", {pxe(3)});
  const std::string path = runJson({"instances", "Orvex_EthernetPort"})[1]["path"];
  for (const std::string& target : {std::string("0000:03:00.1"), std::string(kAdapter), path}) {
    EXPECT_EQ(run({"update", target, rom}).exitStatus, 0) << target;
  }
}

TEST_F(UpdateCommandTest, TakesAFileBesideItAndAUri) {
  addPxeAdapter(kAdapter);
  const std::string rom = writeRom("a new.rom", {pxe(3)});
  EXPECT_EQ(run({"update", kPort, uriOf(rom)}).exitStatus, 0);
  const test::CurrentDirectory beside(adapters());
  const std::string relative = std::filesystem::relative(rom).string();
  EXPECT_EQ(run({"update", kPort, relative}).exitStatus, 0) << relative;
}

TEST_F(UpdateCommandTest, InstallsTheTypesThatAreAskedFor) {
  addPxeAdapter(kAdapter);
  const std::string rom = writeRom("both.rom", {pxe(3), uefi(3)});
  EXPECT_EQ(run({"update", kPort, rom, "--types", "IMG_PXE+IMG_UEFI"}).exitStatus, 0);
  EXPECT_EQ(flash(), test::readBytes(rom));
  EXPECT_EQ(run({"update", kPort, rom, "--types", "IMG_UEFI", "--force"}).exitStatus, 0);
  EXPECT_EQ(runJson({"adapters"})[0]["components"][0]["type"], "IMG_UEFI");
}

TEST_F(UpdateCommandTest, RefusesADowngradeUnlessItIsForced) {
  addPxeAdapter(kAdapter);
  const std::string older = writeRom("older.rom", {pxe(1)});
  expectRefusal(
      {"update", kPort, older}, 4099, "Downgrade/reinstall not supported",
      AllOf(HasSubstr("Downgrade was detected for " + uriOf(older)), HasSubstr("with --force")));
  EXPECT_EQ(run({"update", kPort, older, "--force"}).exitStatus, 0);
  EXPECT_EQ(flash(), test::readBytes(older));
}

TEST_F(UpdateCommandTest, RefusesOtherImageTypes) {
  addPxeAdapter(kAdapter);
  const std::string both = writeRom("both.rom", {pxe(3), uefi(3)});
  expectRefusal({"update", kPort, both}, 4099, "Downgrade/reinstall not supported",
                AllOf(HasSubstr("does not contain the same image types"), HasSubstr("--types")));
  expectRefusal({"update", kPort, writeRom("new.rom", {pxe(3)}), "--types", "IMG_UEFI"}, 4099,
                "Downgrade/reinstall not supported", HasSubstr("lacks a type"));
  expectRefusal({"update", kPort, both, "--types", "IMG_MOON"}, 5, "Invalid Parameter",
                HasSubstr("IMG_MOON is not recognized"));
}

TEST_F(UpdateCommandTest, RefusesFilesThatAreNoImage) {
  addPxeAdapter(kAdapter);
  const std::string missing = path("missing.rom").string();
  expectRefusal({"update", kPort, missing}, 5, "Invalid Parameter",
                HasSubstr("there is no file '" + missing + "'"));
  expectRefusal({"update", kPort, adapters().string()}, 5, "Invalid Parameter",
                HasSubstr("is a directory"));
  expectRefusal({"update", kPort, writeDamagedRom("damaged.rom")}, 5, "Invalid Parameter",
                HasSubstr("is damaged"));
  expectRefusal({"update", kPort, "file:nonsense"}, 5, "Invalid Parameter",
                HasSubstr("URI: file:nonsense is invalid"));
}

TEST_F(UpdateCommandTest, RefusesAnImageForAnotherDevice) {
  addPxeAdapter(kAdapter);
  expectRefusal({"update", kPort, writeRom("other.rom", {pxe(3).device(0x10EC, 0x8139)})}, 4097,
                "Unsupported TargetType", HasSubstr("is not supported for adapter 0000:03:00.0"));
}

TEST_F(UpdateCommandTest, RefusesAnAdapterThatCannotBeUpdated) {
  addPxeAdapter(kAdapter);
  describe("0000-03-00", {{"updatable", false}});
  expectRefusal({"update", kPort, writeRom("new.rom", {pxe(3)})}, 4106,
                "Unsupported target (not applicable for target)", HasSubstr("cannot be replaced"));
}

TEST_F(UpdateCommandTest, WantsOneImage) {
  expectUsageFault({"update", kPort}, AllOf(HasSubstr("IMAGE or --identity is required"),
                                            HasSubstr("Try 'quorvel update --help'.")));
  expectUsageFault({"update", kPort, "a.rom", "--identity", "b.rom"},
                   AllOf(HasSubstr("IMAGE and --identity exclude each other"),
                         HasSubstr("Try 'quorvel update --help'.")));
  expectUsageFault({"update", kPort, "a.rom", "b.rom"}, HasSubstr("b.rom"));
  expectUsageFault({"update", kPort, "a.rom", "--lock-timeout", "soon"},
                   HasSubstr("'soon' is no length of time; write 30s"));
  expectUsageFault({"update", kPort, "a.rom", "--lock-timeout", "1s", "--host", "unix:"},
                   HasSubstr("--lock-timeout does not go with --host"));
  expectUsageFault({"update", kPort, "--identity", ""}, HasSubstr("must not be empty"));
  expectUsageFault({"update", kPort, "--identity", "a.rom", "--types", "IMG_PXE"},
                   HasSubstr("--types goes with IMAGE, not with --identity: name the file"));
}

TEST_F(UpdateCommandTest, SaysThatTheReasonIsUnknownWithoutALog) {
  addPxeAdapter(kAdapter);
  expectFailure({"update", kPort, writeRom("older.rom", {pxe(1)}), "--log-level", "0"},
                HasSubstr("reason: not known, since --log-level 0 keeps no records"));
}

TEST_F(UpdateCommandTest, RefusesATargetThatIsNoAdapter) {
  addPxeAdapter(kAdapter);
  const std::string service =
      runJson({"instances", "Orvex_SoftwareInstallationService"})[0]["path"];
  expectFailure({"update", service, writeRom("new.rom", {pxe(3)})},
                AllOf(HasSubstr("refused: 4106"), HasSubstr("name a port or an adapter")));
}

TEST_F(UpdateCommandTest, ListsWhatIsThereWhenTheTargetIsUnknown) {
  addPxeAdapter(kAdapter, 2);
  for (const char* target : {"0000:09:00.0", "0000:09:00", "nonsense"}) {
    expectFailure(
        {"update", target, "a.rom", "--json"},
        AllOf(HasSubstr(std::string("no adapter or port '") + target + "'"),
              HasSubstr("adapters: 0000:03:00\n"), HasSubstr("0000:03:00.0 0000:03:00.1\n")));
  }
}

TEST_F(UpdateCommandTest, ReportsAFailedJob) {
  addPxeAdapter(kAdapter);
  describe("0000-03-00",
           {{"faults", {{"write", {{"atPercent", 40}, {"code", 17}, {"text", "Sector stuck"}}}}}});
  const test::Bytes before = flash();
  const Arguments arguments{"update", kPort, writeRom("new.rom", {pxe(3)}), "--no-progress"};
  expectFailure(arguments, HasSubstr("quorvel: update of 0000:03:00.0 failed: Exception, error 17: "
                                     "Sector stuck\n  next: "));
  const Json document = runJson(arguments, 1);
  EXPECT_EQ(document["returnValue"], 4096);
  EXPECT_EQ(document["job"]["JobState"], 10);
  EXPECT_EQ(document["job"]["ErrorCode"], 17);
  EXPECT_EQ(document["job"]["ErrorDescription"], "Sector stuck");
  EXPECT_EQ(flash(), before);
}

TEST_F(UpdateCommandTest, PrintsProgressInLinesIntoAPipe) {
  const ProgramResult result = run({"update", kPort, addSlowAdapter(kAdapter)});
  EXPECT_EQ(result.exitStatus, 0);
  EXPECT_THAT(result.output, ContainsRegex("updating 0000:03:00.0: [1-9][0-9] %, 00:0[0-9]\n"));
  EXPECT_THAT(result.output, Not(HasSubstr("\r")));
}

TEST_F(UpdateCommandTest, PrintsNoProgressWhenNotWanted) {
  const ProgramResult result = run({"update", kPort, addSlowAdapter(kAdapter), "--no-progress"});
  EXPECT_THAT(result.output, MatchesRegex("Completed: 0000:03:00.0 is updated \\(00:0[0-9]\\)\n"));
}

}  // namespace
