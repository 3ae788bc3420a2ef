#include <gmock/gmock.h>

#include "Os/SettingsStore.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDirectory.h"

namespace {

using test::LogCapture;
using test::LogLevel;
using testing::ElementsAre;
using testing::Optional;

class SettingsStore : public testing::Test {
 protected:
  void write(const std::string& content) { m_path = m_directory.write("agent.conf", content); }

  [[nodiscard]] std::optional<std::string> text(const char* name) const {
    std::string value;
    const bool isRead =
        utils::SettingsStore(m_path).read(utils::SettingName{"Quorvel", name}, value);
    return isRead ? std::optional(value) : std::nullopt;
  }
  [[nodiscard]] std::optional<std::uint32_t> number(const char* name) const {
    std::uint32_t value = 99;
    const bool isRead =
        utils::SettingsStore(m_path).read(utils::SettingName{"Quorvel", name}, value);
    EXPECT_TRUE(isRead || value == 99);
    return isRead ? std::optional(value) : std::nullopt;
  }

  test::TempDirectory m_directory;
  std::string m_path = m_directory.path() / "absent.conf";
};

TEST_F(SettingsStore, ReadsNamesAndValues) {
  write("Timeout = 250\nNamespace=root/cimv2\n");

  EXPECT_THAT(text("Namespace"), Optional(std::string("root/cimv2")));
  EXPECT_THAT(text("Timeout"), Optional(std::string("250")));
  EXPECT_THAT(number("Timeout"), Optional(250U));
}

TEST_F(SettingsStore, LeavesOutBlanksCommentsAndLineEndsOfOtherSystems) {
  write("# Timeout = 1\r\n\r\n \t Timeout\t=  250 \t# milliseconds\r\nNamespace = a b\r\n#\n");

  EXPECT_THAT(number("Timeout"), Optional(250U));
  EXPECT_THAT(text("Namespace"), Optional(std::string("a b")));
}

TEST_F(SettingsStore, ReadsALastLineThatIsNotEnded) {
  write("Timeout = 250");

  EXPECT_THAT(number("Timeout"), Optional(250U));
}

TEST_F(SettingsStore, TakesTheLastOfSeveralLinesWithOneName) {
  write("Timeout = 1\nTimeout = 2\n");

  EXPECT_THAT(number("Timeout"), Optional(2U));
}

TEST_F(SettingsStore, KeepsFurtherEqualsSignsInTheValue) {
  write("FWFilePath = /a=b;/c\nEmpty =\n");

  EXPECT_THAT(text("FWFilePath"), Optional(std::string("/a=b;/c")));
  EXPECT_THAT(text("Empty"), Optional(std::string()));
}

TEST_F(SettingsStore, TellsNamesApartByCase) {
  write("timeout = 1\n");

  EXPECT_EQ(text("Timeout"), std::nullopt);
}

TEST_F(SettingsStore, ReadsNumbersInBothBases) {
  write("Decimal = 32\nHexadecimal = 0x20\nLargest = 0xFFFFFFFF\n");

  EXPECT_THAT(number("Decimal"), Optional(32U));
  EXPECT_THAT(number("Hexadecimal"), Optional(32U));
  EXPECT_THAT(number("Largest"), Optional(4294967295U));
}

TEST_F(SettingsStore, HasNoNumberWhereATextStands) {
  write("A = soon\nB = -1\nC = 032\nD =\nE = 3000000000\nF = 1 2\n");

  for (const char* name : {"A", "B", "C", "D", "E", "F", "G"}) {
    EXPECT_EQ(number(name), std::nullopt) << name;
  }
}

TEST_F(SettingsStore, LogsALineThatItDoesNotUnderstandAndGoesOn) {
  write("\nTimeout 100%s\nNamespace = root\n");
  const LogCapture log;

  EXPECT_THAT(text("Namespace"), Optional(std::string("root")));
  EXPECT_THAT(log.records(), ElementsAre(test::IsRecordOf(
                                 "Os/Posix/PosixSettingsStore", LogLevel::Debug,
                                 "utils::SettingsStore::SettingsStore",
                                 m_path + ":2: expected 'name = value', found 'Timeout 100%s'")));
}

TEST_F(SettingsStore, HasNothingWithoutItsFile) {
  EXPECT_EQ(text("Namespace"), std::nullopt);

  m_path = m_directory.path();
  EXPECT_EQ(text("Namespace"), std::nullopt);
  m_path = "";
  EXPECT_EQ(text("Namespace"), std::nullopt);
}

TEST_F(SettingsStore, HoldsOutAgainstBinaryContent) {
  std::string content;
  for (int i = 0; i < 4096; ++i) {
    content.push_back(static_cast<char>(i * 7));
  }
  write(content + "\nTimeout = 250\n");

  EXPECT_THAT(number("Timeout"), Optional(250U));
}

}  // namespace
