#include <gmock/gmock.h>
#include <windows.h>

#include "Os/SettingsStore.h"
#include "tests/support/Windows/MachineRegistry.h"

namespace {

constexpr const char* kQuorvelKey = "SOFTWARE\\ZOLAN\\Network_Services\\Quorvel";
constexpr const char* kRavlKey = "SOFTWARE\\ZOLAN\\Network_Services\\RAVL";

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

}  // namespace
