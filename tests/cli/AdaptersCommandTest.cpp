#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/support/QuorvelFixture.h"
#include "tests/support/Regex.h"

namespace {

using test::MatchesRegex;
using test::ProgramResult;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class AdaptersCommandTest : public test::QuorvelFixture {
 protected:
  // Returns the arguments that add a sound adapter, with one option given another value.
  Arguments addWith(const std::string& option, const std::string& value) const {
    Arguments arguments{"adapters", "add",  "--pci",    "0000:03:00",
                        "--ports",  "1",    "--vendor", "1af4",
                        "--device", "1041", "--rom",    writeRom("a.rom", {pxe()})};
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      if (arguments[i] == option) {
        arguments[i + 1] = value;
        return arguments;
      }
    }
    arguments.insert(arguments.end(), {option, value});
    return arguments;
  }

  void expectNothingAdded() { EXPECT_THAT(runJson({"adapters"}), IsEmpty()); }
};

TEST_F(AdaptersCommandTest, SaysHowToBeginWhereThereIsNone) {
  const ProgramResult result = run({"adapters"});
  EXPECT_EQ(result.exitStatus, 0);
  EXPECT_EQ(result.output, "There are no adapters in " + adapters().string() +
                               ". Make one with 'quorvel adapters add', or name another directory "
                               "with --adapters.\n");
  EXPECT_THAT(runJson({"adapters"}), IsEmpty());
}

TEST_F(AdaptersCommandTest, ListsEachPortWithItsFirmware) {
  addAdapter("0000:03:00", writeRom("both.rom", {pxe(1), uefi(2)}), 2);
  const ProgramResult result = run({"adapters", "list"});
  EXPECT_EQ(result.exitStatus, 0);
  EXPECT_THAT(
      result.output,
      MatchesRegex(
          "PORT          ADAPTER     NAME             DEVICE     BOOT  UPDATABLE  FIRMWARE\n"
          "0000:03:00.0  0000:03:00  Virtual adapter  1af4:1041  PXE   yes        "
          "IMG_PXE 1\\.0 \\([0-9a-f]{8}\\), IMG_UEFI 2\\.0 \\([0-9a-f]{8}\\)\n"
          "0000:03:00.1  0000:03:00  Virtual adapter  1af4:1041  PXE   yes        "
          "IMG_PXE 1\\.0 \\([0-9a-f]{8}\\), IMG_UEFI 2\\.0 \\([0-9a-f]{8}\\)\n"));
  EXPECT_EQ(run({"adapters"}).output, result.output);
  EXPECT_EQ(result.errors, "");
}

TEST_F(AdaptersCommandTest, ListsAdaptersAsADocument) {
  addAdapter("0000:03:00", writeRom("both.rom", {pxe(1), uefi(2)}), 2, 4096);
  addPxeAdapter("0000:04:00");
  const Json document = runJson({"adapters", "list"});
  ASSERT_THAT(document, SizeIs(2));
  const Json& adapter = document[0];
  EXPECT_EQ(adapter["pci"], "0000:03:00");
  EXPECT_EQ(adapter["name"], "Virtual adapter");
  EXPECT_EQ(adapter["vendorId"], "1af4");
  EXPECT_EQ(adapter["updatable"], true);
  EXPECT_EQ(adapter["writeRate"], 4096);
  EXPECT_EQ(adapter["flashDefect"], nullptr);
  EXPECT_EQ(adapter["ports"][1]["identifier"], "0000:03:00.1");
  EXPECT_EQ(adapter["ports"][1]["bootType"], "PXE");
  EXPECT_EQ(adapter["components"][1]["type"], "IMG_UEFI");
  EXPECT_EQ(adapter["components"][1]["version"], "2.0");
  EXPECT_EQ(document[1]["pci"], "0000:04:00");
}

TEST_F(AdaptersCommandTest, ShowsWhatItAdded) {
  const ProgramResult result = run(addWith("--name", "Lab \"A\""));
  EXPECT_EQ(result.exitStatus, 0) << result.errors;
  EXPECT_THAT(result.output,
              AllOf(HasSubstr("Added to " + adapters().string() + ":\nPORT "),
                    HasSubstr("0000:03:00.0  0000:03:00  Lab \"A\"  1af4:1041  PXE")));
  Arguments asDocument = addWith("--pci", "0000:04:00");
  EXPECT_EQ(runJson(asDocument)["pci"], "0000:04:00");
}

TEST_F(AdaptersCommandTest, TakesARealRom) {
  const std::string rom = "/usr/lib/ipxe/qemu/efi-virtio.rom";
  if (!std::ifstream(rom)) {
    GTEST_SKIP() << rom << " is not installed (package ipxe-qemu)";
  }
  addAdapter("0000:03:00", rom);
  EXPECT_THAT(run({"adapters"}).output,
              AllOf(HasSubstr("IMG_PXE 0.1 ("), HasSubstr("IMG_UEFI 0.0 (")));
}

TEST_F(AdaptersCommandTest, RefusesAnAddressThatIsTaken) {
  addPxeAdapter("0000:03:00");
  expectFailure(addWith("--ports", "2"), HasSubstr("Adapter 0000:03:00 exists already"));
  EXPECT_THAT(runJson({"adapters"})[0]["ports"], SizeIs(1));
}

TEST_F(AdaptersCommandTest, RefusesAFileThatIsNoRom) {
  expectFailure(addWith("--rom", path("missing.rom").string()), HasSubstr("missing.rom"));
  expectFailure(addWith("--rom", path("").string()), HasSubstr("Check the path"));
  expectFailure(addWith("--rom", writeDamagedRom("damaged.rom")),
                HasSubstr("is no valid chain of PCI Expansion ROM images"));
  expectNothingAdded();
}

TEST_F(AdaptersCommandTest, RefusesOptionsWithoutSense) {
  for (const char* address : {"0000:03:00.0", "03:00", "0000:03:20", ""}) {
    expectUsageFault(addWith("--pci", address), HasSubstr("must be like 0000:03:00"));
  }
  for (const char* id : {"1af", "1af4a", "0x1a", "xyzt", "-1af", ""}) {
    expectUsageFault(addWith("--vendor", id), HasSubstr("must be four hexadecimal digits"));
    expectUsageFault(addWith("--device", id), HasSubstr("must be four hexadecimal digits"));
  }
  for (const char* ports : {"0", "9", "-1", "x"}) {
    expectUsageFault(addWith("--ports", ports), HasSubstr("--ports"));
  }
  expectUsageFault(addWith("--rate", "fast"), HasSubstr("--rate"));
  expectUsageFault({"adapters", "add", "--pci", "0000:03:00"}, HasSubstr("--vendor is required"));
  expectNothingAdded();
}

TEST_F(AdaptersCommandTest, WarnsAboutFoldersThatAreNoAdapters) {
  addPxeAdapter("0000:03:00");
  addPxeAdapter("0000:04:00");
  std::ofstream(adapters() / "0000-04-00" / "adapter.json") << "{";
  const ProgramResult result = run({"adapters"});
  EXPECT_EQ(result.exitStatus, 0);
  EXPECT_THAT(result.output, HasSubstr("0000:03:00.0"));
  EXPECT_THAT(result.errors,
              AllOf(HasSubstr("quorvel: warning: " + (adapters() / "0000-04-00").string() +
                              " is passed over: "),
                    HasSubstr("\n  next: repair the folder")));
  EXPECT_THAT(runJson({"adapters"}), SizeIs(1));
}

TEST_F(AdaptersCommandTest, WarnsAboutADamagedFlash) {
  addPxeAdapter("0000:03:00");
  std::ofstream(adapters() / "0000-03-00" / "flash.rom") << "rubbish";
  const ProgramResult result = run({"adapters"});
  EXPECT_THAT(result.output, HasSubstr("damaged\n"));
  EXPECT_THAT(result.errors, HasSubstr("the flash of 0000:03:00 holds no valid images: "));
  EXPECT_TRUE(runJson({"adapters"})[0]["flashDefect"].is_string());
}

}  // namespace
