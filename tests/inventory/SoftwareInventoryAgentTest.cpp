#include <gmock/gmock.h>

#include "core/CimBroker.h"
#include "inventory/SoftwareInventoryAgent.h"
#include "tests/agent/FakeMidApi.h"

namespace {

TEST(SoftwareInventoryAgent, ServesItsClasses) {
  const core::SoftwareInventoryAgent agent;
  EXPECT_EQ(agent.getName(), "Software Inventory");
  EXPECT_THAT(agent.getClassNames(),
              testing::UnorderedElementsAre("Orvex_EthernetPort", "Orvex_PortController",
                                            "Orvex_RegisteredProfile"));
}

TEST(SoftwareInventoryAgent, IsReachedThroughTheBrokerOnceItWasAdded) {
  const test::FakeMidApi midApi;
  core::CimBroker& broker = core::GetCimBroker();
  const std::size_t before = broker.getAgents().size();

  core::addSoftwareInventoryAgent();

  EXPECT_EQ(broker.getAgents().size(), before + 1);
  EXPECT_EQ(broker.getInstances("Orvex_EthernetPort").size(), 3u);
  EXPECT_EQ(broker.getInstances("Orvex_PortController").size(), 2u);
  EXPECT_EQ(broker.getInstances("Orvex_RegisteredProfile").size(), 1u);
}

}  // namespace
