#include <gmock/gmock.h>
#include <string>

#include "client/BrokerConnection.h"
#include "client/IdentityCheck.h"
#include "tests/client/FakeInventory.h"

namespace {

using client::IdentityCheck;

constexpr const char* kFile = "/fw/a.rom";

class IdentityCheckTest : public testing::Test {
 protected:
  IdentityCheckTest() { m_broker.addAgent(&m_inventory); }

  IdentityCheck check(const std::string& identity, const std::string& targetPath) {
    const client::IdentityList list = client::readIdentities(m_connection);
    return client::compareIdentity(m_connection, client::findIdentity(list, identity), targetPath);
  }

  core::CimBroker m_broker;
  client::BrokerConnection m_connection{m_broker};
  test::FakeInventory m_inventory;
};

struct StateCase {
  const char* state;
  std::uint32_t returnValue;
  const char* reason;
};

class IdentityCheckOf : public IdentityCheckTest, public testing::WithParamInterface<StateCase> {};

TEST_P(IdentityCheckOf, AnswersAsTheMethodWould) {
  test::FakeDevice& adapter = m_inventory.addAdapter("0000:03:00");
  m_inventory.addAdapter("0000:04:00");
  m_inventory.compare(m_inventory.addFile(kFile), adapter, GetParam().state);

  const IdentityCheck result = check(kFile, adapter.getPath());

  EXPECT_EQ(result.comparison, GetParam().state);
  EXPECT_EQ(result.answer.returnValue, GetParam().returnValue);
  EXPECT_EQ(result.answer.reason, GetParam().reason);
  EXPECT_NE(result.answer.returnText, "");
}

INSTANTIATE_TEST_SUITE_P(
    States, IdentityCheckOf,
    testing::Values(StateCase{"newer", 0, ""}, StateCase{"same version", 0, ""},
                    StateCase{"same", 0, ""},
                    StateCase{"older", 4099, "Downgrade was detected: what is installed is newer"},
                    StateCase{"other types", 4099,
                              "The file does not hold the same image types as the adapter"},
                    StateCase{"not updatable", 4106, "The adapter's firmware cannot be replaced"},
                    StateCase{"unknown", 2, "The file could not be compared"},
                    StateCase{"what a later host says", 2, "The file could not be compared"}),
    [](const testing::TestParamInfo<StateCase>& entry) {
      return "Case" + std::to_string(entry.index);
    });

TEST_F(IdentityCheckTest, RefusesAFileThatNothingConnectsWithTheAdapter) {
  test::FakeDevice& adapter = m_inventory.addAdapter("0000:03:00");
  test::FakeDevice& other = m_inventory.addAdapter("0000:04:00");
  m_inventory.compare(m_inventory.addFile(kFile), other, "newer");
  const IdentityCheck result = check(kFile, adapter.getPath());
  EXPECT_EQ(result.comparison, "not for it");
  EXPECT_EQ(result.answer.returnValue, 4097u);
}

TEST_F(IdentityCheckTest, TakesAPortForItsAdapter) {
  test::FakeDevice& adapter = m_inventory.addAdapter("0000:03:00");
  // Served as an adapter, for the fake inventory has no ports; what counts is the identifier.
  test::FakeDevice& port = m_inventory.addAdapter("0000:03:00.1");
  m_inventory.compare(m_inventory.addFile(kFile), adapter, "newer");
  EXPECT_EQ(check(kFile, port.getPath()).comparison, "newer");
}

TEST_F(IdentityCheckTest, RefusesWhatIsNoFileAndWhatIsNoTarget) {
  test::FakeDevice& adapter = m_inventory.addAdapter("0000:03:00");
  const std::string component = m_inventory.addComponent("0000:03:00/0").InstanceID.getValue();
  EXPECT_EQ(check(component, adapter.getPath()).answer.returnValue, 5u);
  test::FakeIdentity& file = m_inventory.addFile(kFile);
  EXPECT_EQ(check(kFile, file.getPath()).answer.returnValue, 4106u);
  EXPECT_EQ(check(kFile, "Orvex_PortController.InstanceID=\"none\"").answer.returnValue, 4106u);
}

}  // namespace
