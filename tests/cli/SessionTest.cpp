#include "tests/cli/QuorvelTest.h"

namespace {

using test::ProgramResult;
using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class SessionTest : public test::QuorvelTest {
 protected:
  // Runs an update that changes the installed image types, which only a configuration allows.
  ProgramResult forceOtherTypes(const Arguments& options) {
    addPxeAdapter("0000:03:00");
    Arguments arguments{"update", "0000:03:00", writeRom("both.rom", {pxe(2), uefi(2)}), "--force"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return run(arguments);
  }

  std::string writeConfiguration(const std::string& content) {
    return m_files.write("quorvel.conf", content).string();
  }

 private:
  test::TempDirectory m_files;
};

TEST_F(SessionTest, TakesTheAdaptersDirectoryFromItsOption) {
  addPxeAdapter("0000:03:00");
  const std::string other = path("other").string();
  EXPECT_THAT(runJson({"--adapters", other, "adapters"}), IsEmpty());
  EXPECT_THAT(runJson({"instances", "Orvex_EthernetPort", "--adapters", other}), IsEmpty());
  EXPECT_THAT(runJson({"instances", "Orvex_EthernetPort"}), SizeIs(1));
}

TEST_F(SessionTest, ReadsTheConfigurationFileOfItsOption) {
  const std::string path = writeConfiguration("OEMCustomizeable = 0x20\n");
  EXPECT_EQ(forceOtherTypes({"--config", path}).exitStatus, 0);
}

TEST_F(SessionTest, DoesWithoutAConfigurationFile) {
  EXPECT_EQ(forceOtherTypes({"--config", writeConfiguration("")}).exitStatus, 1);
}

TEST_F(SessionTest, RefusesAConfigurationThatCannotBeRead) {
  expectUsageFault({"--config", "/nonexistent/file", "adapters"},
                   HasSubstr("--config: '/nonexistent/file' cannot be read"));
  expectUsageFault({"instances", "X", "--config", path("").string()},
                   HasSubstr("is a directory; name the configuration file in it"));
}

TEST_F(SessionTest, LogsToStandardErrorAtLevelThree) {
  const ProgramResult loud = run({"--log-level", "3", "instances", "Orvex_EthernetPort"});
  EXPECT_THAT(loud.errors, ContainsRegex("OrvexQuorvel: [^:]+:[0-9]+:[^ ]+: debug: "));
  const ProgramResult quiet = run({"instances", "Orvex_EthernetPort", "--log-level", "2"});
  EXPECT_EQ(quiet.errors, "");
}

TEST_F(SessionTest, KeepsTheDocumentCleanAtLevelThree) {
  addPxeAdapter("0000:03:00");
  EXPECT_THAT(runJson({"--log-level", "3", "instances", "Orvex_EthernetPort"}), SizeIs(1));
}

}  // namespace
