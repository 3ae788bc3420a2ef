#include <gmock/gmock.h>

#include "core/CimBroker.h"
#include "inventory/SoftwareInventoryAgent.h"
#include "tests/inventory/InventoryFixture.h"

namespace {

using InventoryAgent = test::InventoryFixture;

TEST_F(InventoryAgent, ServesItsClasses) {
  const inventory::SoftwareInventoryAgent agent;
  EXPECT_EQ(agent.getName(), "Software Inventory");
  EXPECT_THAT(agent.getClassNames(),
              testing::UnorderedElementsAre("Orvex_EthernetPort", "Orvex_PortController",
                                            "Orvex_RegisteredProfile", "Orvex_SoftwareIdentity",
                                            "Orvex_SoftwareIdentityResource",
                                            "Orvex_ElementSoftwareIdentity"));
}

TEST_F(InventoryAgent, IsReachedThroughTheBrokerOnceItWasAdded) {
  m_adapters.makeAdapter(test::kAdapter, firmware(2));
  makeFile("first/a.rom", firmware(3));

  core::CimBroker& broker = test::brokerWithInventory();

  EXPECT_EQ(broker.getAgents().size(), 1u);
  EXPECT_EQ(broker.getInstances("Orvex_EthernetPort").count(), 2u);
  EXPECT_EQ(broker.getInstances("Orvex_PortController").count(), 1u);
  EXPECT_EQ(broker.getInstances("Orvex_RegisteredProfile").count(), 1u);
  EXPECT_EQ(broker.getInstances("Orvex_SoftwareIdentity").count(), 3u);
  EXPECT_EQ(broker.getInstances("Orvex_SoftwareIdentityResource").count(), 1u);
  EXPECT_EQ(broker.getInstances("Orvex_ElementSoftwareIdentity").count(), 3u);
}

}  // namespace
