#include <nlohmann/json.hpp>

#include "tests/support/QuorvelFixture.h"
#include "tests/support/Regex.h"
#include "tests/support/Settings.h"

namespace {

using test::ContainsRegex;
using test::ProgramResult;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class SessionTest : public test::QuorvelFixture {
 protected:
  SessionTest() { m_settings.write({}); }

  // Runs an update that changes the installed image types, which only a configuration allows.
  ProgramResult forceOtherTypes(const Arguments& options) {
    addPxeAdapter("0000:03:00");
    Arguments arguments{"update", "0000:03:00", writeRom("both.rom", {pxe(2), uefi(2)}), "--force"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return run(arguments);
  }

  // Runs it as the configuration of the test lets it.
  ProgramResult forceOtherTypes() { return forceOtherTypes(m_settings.options()); }

  test::Settings m_settings{test::SettingsScope::Machine};
};

TEST_F(SessionTest, TakesTheAdaptersDirectoryFromItsOption) {
  addPxeAdapter("0000:03:00");
  const std::string other = path("other").string();
  EXPECT_THAT(runJson({"--adapters", other, "adapters"}), IsEmpty());
  EXPECT_THAT(runJson({"instances", "Orvex_EthernetPort", "--adapters", other}), IsEmpty());
  EXPECT_THAT(runJson({"instances", "Orvex_EthernetPort"}), SizeIs(1));
}

TEST_F(SessionTest, ReadsTheConfiguration) {
  m_settings.write({{"OEMCustomizeable", 0x20U}});
  EXPECT_EQ(forceOtherTypes().exitStatus, 0);
}

TEST_F(SessionTest, DoesWithoutSettings) {
  EXPECT_EQ(forceOtherTypes().exitStatus, 1);
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
