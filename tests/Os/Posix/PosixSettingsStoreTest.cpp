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

  [[nodiscard]] std::vector<std::string> problems() const {
    constexpr utils::SettingName kKnown[] = {
        {"Quorvel", "Timeout", true}, {"Quorvel", "A"}, {"Quorvel", "B"}, {"Quorvel", "C"}};
    return utils::SettingsStore(m_path).findProblems(kKnown);
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
  write("A = soon\nB = -1\nC = 032\nD =\nE = 4294967296\nF = 1 2\n");

  for (const char* name : {"A", "B", "C", "D", "E", "F", "G"}) {
    EXPECT_EQ(number(name), std::nullopt) << name;
  }
}

TEST_F(SettingsStore, TakesDecimalsOfAll32Bits) {
  write("A = 2147483648\nB = 4294967295\nC = \"3000000000\"\nD = 0\n");

  EXPECT_THAT(number("A"), Optional(2147483648U));
  EXPECT_THAT(number("B"), Optional(4294967295U));
  EXPECT_THAT(number("C"), Optional(3000000000U));
  EXPECT_THAT(number("D"), Optional(0U));
}

TEST_F(SettingsStore, TakesTheSignOfCommentsInQuotes) {
  write("A = \"/fw#1;/b\"  # two directories\nB=\" x \"\nC = \"a \\\"b\\\" c\"# end\nD = \"\"\n");

  EXPECT_THAT(text("A"), Optional(std::string("/fw#1;/b")));
  EXPECT_THAT(text("B"), Optional(std::string(" x ")));
  EXPECT_THAT(text("C"), Optional(std::string("a \"b\" c")));
  EXPECT_THAT(text("D"), Optional(std::string()));
}

TEST_F(SettingsStore, TakesQuotesThatDoNotHoldTheWholeValueForCharacters) {
  write("A = \"/a#1\nB = \"/a\";/b # c\nC = /a\"#1\"\n");

  EXPECT_THAT(text("A"), Optional(std::string("\"/a")));
  EXPECT_THAT(text("B"), Optional(std::string("\"/a\";/b")));
  EXPECT_THAT(text("C"), Optional(std::string("/a\"")));
  EXPECT_THAT(
      problems(),
      ElementsAre(m_path + ":1: the double quote at the start of the value is not closed",
                  m_path + ":2: ';/b # c' stands behind the closing quote; put the whole value "
                           "in quotes"));
}

TEST_F(SettingsStore, FindsNamesThatNobodyKnowsAndNumbersThatAreNone) {
  write("X = 1\nTimeut = 1\nTimeout = soon\n\nLogLevel = 2\n");

  EXPECT_THAT(
      problems(),
      testing::UnorderedElementsAre(
          m_path + ":1: there is no setting 'X'; the settings are Timeout, A, B, C",
          m_path + ":2: there is no setting 'Timeut'; did you mean 'Timeout'?",
          m_path + ":3: Timeout is ignored: 'soon' is no number below 4294967296, decimal "
                   "without leading zeros or hexadecimal with 0x",
          m_path + ":5: there is no setting 'LogLevel'; the settings are Timeout, A, B, C"));
}

TEST_F(SettingsStore, FindsNothingWrongWithNumbersInBothBases) {
  for (const char* value : {"0", "250", "0x20", "0X0000FFFFFFFF", "\" 7 \""}) {
    write(std::string("Timeout = ") + value + "\n");
    EXPECT_THAT(problems(), testing::IsEmpty()) << value;
  }
}

TEST_F(SettingsStore, NamesAFewProblemsOfAFileThatIsNone) {
  std::string content;
  for (int i = 0; i < 1000; ++i) {
    content += "line\nname" + std::to_string(i) + " = 1\n";
  }
  write(content);

  EXPECT_EQ(problems().size(), 16U);
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

TEST_F(SettingsStore, TellsTheLineOfASetting) {
  write("\nTimeout = 1\nTimeout = 2\n");

  EXPECT_EQ(utils::SettingsStore(m_path).placeOf({"Quorvel", "Timeout"}), m_path + ":3");
  EXPECT_EQ(utils::SettingsStore(m_path).placeOf({"Quorvel", "Other"}), m_path);
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
