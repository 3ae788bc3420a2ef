#include <gmock/gmock.h>
#include <string>
#include <vector>
#include <windows.h>

#include "Os/SettingsStore.h"
#include "tests/support/Windows/MachineRegistry.h"

namespace {

constexpr const char* kQuorvelKey = "SOFTWARE\\ZOLAN\\Network_Services\\Quorvel";
constexpr const char* kRavlKey = "SOFTWARE\\ZOLAN\\Network_Services\\RAVL";

using testing::ElementsAre;
using testing::IsEmpty;

class WindowsSettingsStore : public testing::Test {
 protected:
  test::OwnMachineRegistry m_machine;
  const utils::SettingsStore m_store{"unused.conf"};
};

TEST_F(WindowsSettingsStore, ReadsBothKeysOfTheMachine) {
  m_machine.writeNumber(kQuorvelKey, "Timeout", 250);
  m_machine.writeNumber(kRavlKey, "Timeout", 500);
  m_machine.writeText(kQuorvelKey, "Namespace", "root/cimv2");
  std::uint32_t number = 0;
  std::string text;

  EXPECT_TRUE(m_store.read({"Quorvel", "Timeout"}, number));
  EXPECT_EQ(number, 250U);
  EXPECT_TRUE(m_store.read({"RAVL", "Timeout"}, number));
  EXPECT_EQ(number, 500U);
  EXPECT_TRUE(m_store.read({"Quorvel", "Namespace"}, text));
  EXPECT_EQ(text, "root/cimv2");
}

TEST_F(WindowsSettingsStore, LeavesTheOutputAloneWhereAValueIsMissingOrOfAnotherType) {
  m_machine.writeText(kQuorvelKey, "Timeout", "250");
  m_machine.writeNumber(kQuorvelKey, "Namespace", 250);
  std::uint32_t number = 99;
  std::string text = "before";

  EXPECT_FALSE(m_store.read({"Quorvel", "Timeout"}, number));
  EXPECT_FALSE(m_store.read({"RAVL", "Timeout"}, number));
  EXPECT_FALSE(m_store.read({"Quorvel", "Namespace"}, text));
  EXPECT_EQ(number, 99U);
  EXPECT_EQ(text, "before");
}

TEST_F(WindowsSettingsStore, NamesValuesOfAnotherTypeWithBothTypes) {
  const std::vector<utils::SettingName> known = {
      {"Quorvel", "Timeout", true}, {"Quorvel", "Namespace"}, {"Quorvel", "FWFilePath"}};
  EXPECT_THAT(m_store.findProblems(known), IsEmpty());
  m_machine.writeText(kQuorvelKey, "Timeout", "250");
  m_machine.write(kQuorvelKey, "Namespace", REG_EXPAND_SZ, std::string("root\0", 5));
  m_machine.writeText(kQuorvelKey, "FWFilePath", "C:\\firmware");
  m_machine.writeText(kQuorvelKey, "Unknown", "1");

  const std::string place = std::string("HKEY_LOCAL_MACHINE\\") + kQuorvelKey + "\\";
  EXPECT_THAT(m_store.findProblems(known),
              ElementsAre(place + "Timeout: Timeout is ignored: its type is REG_SZ; write it as "
                                  "REG_DWORD",
                          place + "Namespace: Namespace is ignored: its type is REG_EXPAND_SZ; "
                                  "write it as REG_SZ"));
}

TEST_F(WindowsSettingsStore, NamesANumberOfAnotherSize) {
  const std::vector<utils::SettingName> known = {{"Quorvel", "Timeout", true}};
  std::uint32_t number = 99;
  for (const std::size_t size : {std::size_t{0}, std::size_t{2}, std::size_t{8}}) {
    m_machine.write(kQuorvelKey, "Timeout", REG_DWORD, std::string(size, '\1'));
    EXPECT_FALSE(m_store.read(known[0], number));
    EXPECT_THAT(m_store.findProblems(known),
                ElementsAre(testing::EndsWith(
                    "Timeout: Timeout is ignored: its type is REG_DWORD, but it has " +
                    std::to_string(size) + " bytes, not 4; write it as REG_DWORD again")));
  }
  EXPECT_EQ(number, 99U);
}

TEST_F(WindowsSettingsStore, NamesATextOfHalfACharacter) {
  const std::vector<utils::SettingName> known = {{"Quorvel", "Namespace"}};
  m_machine.writeStored(kQuorvelKey, "Namespace", REG_SZ, std::string("r\0o\0o\0t\0/", 9));
  std::string text = "before";

  EXPECT_FALSE(m_store.read(known[0], text));
  EXPECT_EQ(text, "before");
  EXPECT_THAT(m_store.findProblems(known),
              ElementsAre(testing::EndsWith(
                  "Namespace: Namespace is ignored: its type is REG_SZ, but its 9 bytes are no "
                  "whole characters; write it as REG_SZ again")));
}

TEST_F(WindowsSettingsStore, NamesATextThatIsTooLong) {
  const std::vector<utils::SettingName> known = {{"Quorvel", "FWFilePath"}};
  m_machine.writeText(kQuorvelKey, "FWFilePath", std::string(255, 'x'));
  EXPECT_THAT(m_store.findProblems(known), IsEmpty());
  m_machine.writeText(kQuorvelKey, "FWFilePath", std::string(256, 'x'));
  EXPECT_THAT(m_store.findProblems(known),
              ElementsAre(testing::EndsWith("FWFilePath is ignored: it has 257 bytes, more than "
                                            "the 256 that are read")));
}

}  // namespace
