// The configuration over the registry: every value, and every entry that it logs.

#include <fstream>
#include <gmock/gmock.h>
#include <regex>
#include <windows.h>

#include "Os/QuorvelConfig.h"
#include "Os/Windows/WindowsRegistry.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Windows/MachineRegistry.h"

namespace {

using test::IsRecordOf;
using test::LogCapture;
using test::LogLevel;
using test::LogRecord;
using testing::Contains;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kQuorvelKey = "SOFTWARE\\ZOLAN\\Network_Services\\Quorvel";
constexpr const char* kRavlKey = "SOFTWARE\\ZOLAN\\Network_Services\\RAVL";

auto fromConfig(const std::string& message) {
  return IsRecordOf("Os/Windows/WindowsQuorvelConfig", LogLevel::Debug,
                    "utils::QuorvelConfig::initialize", message);
}
auto fromRegistry(const std::string& message) {
  return IsRecordOf("Os/Windows/Windows", LogLevel::Debug,
                    "utils::WindowsRegistry::getRegistryData", message);
}
auto opens(const std::string& key, const std::string& name) {
  return fromRegistry("Opennig key " + key + " (" + name + ")");
}
auto misses(const std::string& name) {
  return fromRegistry(name + " Registry Entry does not exist");
}

class WindowsQuorvelConfig : public testing::Test {
 protected:
  // The registry logs its own creation: before the test.
  WindowsQuorvelConfig() { static_cast<void>(utils::WindowsRegistry::getInstance()); }

  void writeAll() {
    m_machine.writeNumber(kQuorvelKey, "Timeout", 250);
    m_machine.writeText(kQuorvelKey, "Namespace", "root/cimv2");
    m_machine.writeNumber(kRavlKey, "OEMCustomizeable", 0x20);
    m_machine.writeText(kQuorvelKey, "FWFilePath", m_directory.path().string());
  }
  // Writes the values of a registry file.
  void import(const std::string& file) {
    const std::regex keyLine("\\[HKEY_LOCAL_MACHINE\\\\(.*)\\]");
    const std::regex numberLine("\"(.*)\"=dword:([0-9a-f]{8})");
    const std::regex textLine("\"(.*)\"=\"(.*)\"");
    std::string key;
    std::smatch match;
    std::ifstream stream(file);
    for (std::string line; std::getline(stream, line);) {
      if (std::regex_match(line, match, keyLine)) {
        key = match[1];
      } else if (std::regex_match(line, match, numberLine)) {
        m_machine.writeNumber(key, match[1],
                              static_cast<std::uint32_t>(std::stoul(match[2], nullptr, 16)));
      } else if (std::regex_match(line, match, textLine)) {
        m_machine.writeText(key, match[1], match[2]);
      }
    }
  }
  void expectDefaults() {
    EXPECT_EQ(m_config.getNamespace(), "root/DCIM/zolan");
    EXPECT_EQ(m_config.getTimeout(), 300'000U);
    EXPECT_FALSE(m_config.getDowngradeEnable());
    EXPECT_THAT(m_config.getFWFilePaths(), IsEmpty());
  }

  test::TempDirectory m_directory;
  test::OwnMachineRegistry m_machine;
  utils::QuorvelConfig m_config;
};

TEST_F(WindowsQuorvelConfig, LogsEveryReadOfWhatIsThere) {
  writeAll();
  const std::string folder = m_directory.path().string();
  const LogCapture log;
  m_config.initialize();

  const auto records = log.records();
  ASSERT_GE(records.size(), 9U);
  EXPECT_THAT(
      std::vector(records.begin(), records.begin() + 9),
      ElementsAre(fromConfig("Trying to read register ..."), opens(kQuorvelKey, "Timeout"),
                  opens(kQuorvelKey, "Namespace"), opens(kRavlKey, "OEMCustomizeable"),
                  opens(kQuorvelKey, "FWFilePath"),
                  fromConfig("Getting Firmware File Paths from: " + folder),
                  fromConfig("Candidate path : " + folder),
                  IsRecordOf("Os/Windows/Windows", LogLevel::Debug, "os::isThisADir",
                             "Checking if the declared path " + folder + " points to a directory"),
                  IsRecordOf("Os/Windows/Windows", LogLevel::Debug, "os::isThisADir",
                             "It is a directory")));
  EXPECT_THAT(std::vector(records.begin() + 9, records.end()),
              ElementsAre(fromConfig("Read next FWFilePath : " + folder)));
}

TEST_F(WindowsQuorvelConfig, LogsEveryEntryThatIsMissing) {
  m_machine.writeNumber(kQuorvelKey, "Other", 1);
  m_machine.writeNumber(kRavlKey, "Other", 1);
  const LogCapture log;
  m_config.initialize();

  const auto records = log.records();
  ASSERT_EQ(records.size(), 13U);
  EXPECT_THAT(std::vector(records.begin(), records.begin() + 7),
              ElementsAre(fromConfig("Trying to read register ..."), opens(kQuorvelKey, "Timeout"),
                          misses("Timeout"), fromConfig("Getting TimeOut from register - failed"),
                          opens(kQuorvelKey, "Namespace"), misses("Namespace"),
                          fromConfig("Getting Namespace from register - failed")));
  EXPECT_THAT(std::vector(records.begin() + 7, records.end()),
              ElementsAre(opens(kRavlKey, "OEMCustomizeable"), misses("OEMCustomizeable"),
                          fromConfig("Getting LogLevel from register - failed"),
                          opens(kQuorvelKey, "FWFilePath"), misses("FWFilePath"),
                          fromConfig("Getting Firmware File Paths from register - failed")));
}

// What stands in the registry for a setting, and what is logged where it cannot be read.
struct Row {
  const char* key;
  const char* name;
  std::uint32_t type;
  std::string bytes;  // a value that changes the setting, when it is of the type
  const char* failure;
};

std::vector<Row> rows() {
  return {{kQuorvelKey, "Timeout", REG_DWORD, {"\xFA\0\0\0", 4}, "Getting TimeOut from register"},
          {kQuorvelKey, "Namespace", REG_SZ, "root/cimv2", "Getting Namespace from register"},
          {kRavlKey,
           "OEMCustomizeable",
           REG_DWORD,
           {"\x20\0\0\0", 4},
           "Getting LogLevel from register"},
          {kQuorvelKey, "FWFilePath", REG_SZ, "C:\\", "Getting Firmware File Paths from register"}};
}

TEST_F(WindowsQuorvelConfig, TakesNoValueOfAnotherTypeAndSaysThatReadingItFailed) {
  for (const Row& row : rows()) {
    for (std::uint32_t type = REG_NONE; type <= REG_QWORD; ++type) {
      if (type == row.type) {
        continue;
      }
      m_machine.write(row.key, row.name, type, row.bytes);
      const LogCapture log;
      expectDefaults();

      const std::string failure = std::string(row.failure) + " - failed";
      EXPECT_THAT(log.records(), Contains(fromConfig(failure))) << row.name << " " << type;
      EXPECT_THAT(log.records(), Not(Contains(misses(row.name)))) << row.name << " " << type;
    }
    m_machine.removeValue(row.key, row.name);
  }
}

TEST_F(WindowsQuorvelConfig, TakesNoTextOfMoreThan256Bytes) {
  m_machine.writeText(kQuorvelKey, "Namespace", "root/" + std::string(300, 'x'));
  m_machine.writeText(kQuorvelKey, "FWFilePath",
                      m_directory.path().string() + std::string(300, ';'));

  expectDefaults();
}

TEST_F(WindowsQuorvelConfig, LooksForEachValueUnderItsOwnKey) {
  m_machine.writeNumber(kRavlKey, "Timeout", 250);
  m_machine.writeText(kRavlKey, "Namespace", "root/cimv2");
  m_machine.writeNumber(kQuorvelKey, "OEMCustomizeable", 0x20);
  m_machine.writeText(kRavlKey, "FWFilePath", m_directory.path().string());

  expectDefaults();
}

TEST_F(WindowsQuorvelConfig, HasTheDefaultsOfTheSettingsThatArePackaged) {
  import(QUORVEL_PACKAGED_SETTINGS);
  const LogCapture log;
  expectDefaults();
  EXPECT_THAT(log.records(), Not(Contains(Field(&LogRecord::message, HasSubstr("failed")))));
}

TEST_F(WindowsQuorvelConfig, DoesNotReadTheConfigurationFile) {
  const auto file = m_directory.write("agent.conf", std::string("Timeout = 250\n"));
  utils::QuorvelConfig config(file.string());

  EXPECT_EQ(config.getTimeout(), 300'000U);
}

}  // namespace
