#include <algorithm>
#include <cstddef>
#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "core/CimBroker.h"
#include "core/LookAhead.h"
#include "inventory/SoftwareInventoryAgent.h"
#include "tests/inventory/InventoryFixture.h"

namespace {

using InventoryAgent = test::InventoryFixture;

TEST_F(InventoryAgent, ServesItsClasses) {
  const inventory::SoftwareInventoryAgent agent;
  EXPECT_EQ(agent.getName(), "Software Inventory");
  EXPECT_THAT(agent.getClassNames(),
              testing::UnorderedElementsAre(
                  "Orvex_EthernetPort", "Orvex_PortController", "Orvex_RegisteredProfile",
                  "Orvex_SoftwareIdentity", "Orvex_SoftwareIdentityResource",
                  "Orvex_ElementSoftwareIdentity", "Orvex_ComputerSystem", "Orvex_ControlledBy",
                  "Orvex_EthernetPortConformsToProfile", "Orvex_HostedResource",
                  "Orvex_HostedService", "Orvex_InstalledSoftwareIdentity",
                  "Orvex_ResourceForSoftwareIdentity", "Orvex_SystemDevice"));
}

TEST_F(InventoryAgent, RecordsTheRegistrationOfItsFirstClassesAlone) {
  m_log.clear();
  const inventory::SoftwareInventoryAgent agent;
  EXPECT_THAT(m_log.messages("core::CimClasses::add"), testing::SizeIs(6));
}

TEST_F(InventoryAgent, IsReachedThroughTheBrokerOnceItWasAdded) {
  m_adapters.makeAdapter(test::kAdapter, firmware(2));
  makeFile("first/a.rom", firmware(3));

  core::CimBroker& broker = test::brokerWithInventory();

  const std::vector<core::CimAgent*> agents = broker.getAgents();
  EXPECT_EQ(
      std::count_if(agents.begin(), agents.end(),
                    [](core::CimAgent* agent) { return agent->hasClass("Orvex_EthernetPort"); }),
      1);
  EXPECT_EQ(broker.getInstances("Orvex_EthernetPort").count(), 2u);
  EXPECT_EQ(broker.getInstances("Orvex_PortController").count(), 1u);
  EXPECT_EQ(broker.getInstances("Orvex_RegisteredProfile").count(), 1u);
  EXPECT_EQ(broker.getInstances("Orvex_SoftwareIdentity").count(), 3u);
  EXPECT_EQ(broker.getInstances("Orvex_SoftwareIdentityResource").count(), 1u);
  EXPECT_EQ(broker.getInstances("Orvex_ElementSoftwareIdentity").count(), 3u);
}

TEST_F(InventoryAgent, LooksForTheFilesOfItsClassesBeforeARequest) {
  core::CimBroker& broker = test::brokerWithInventory();
  for (const std::string className :
       {"Orvex_SoftwareIdentity", "Orvex_SoftwareIdentityResource", "Orvex_ElementSoftwareIdentity",
        "Orvex_HostedResource", "Orvex_InstalledSoftwareIdentity",
        "Orvex_ResourceForSoftwareIdentity"}) {
    makeFile("first/" + className, firmware(1));
    const std::size_t before = m_log.messages("os::readFile").size();
    const core::LookAhead ahead(broker, {"Orvex_EthernetPort", className});
    EXPECT_GT(m_log.messages("os::readFile").size(), before) << className;
  }
  EXPECT_EQ(broker.getInstances("Orvex_SoftwareIdentity").count(), 6u);
}

TEST_F(InventoryAgent, ReadsNoFileUnderARequest) {
  m_adapters.makeAdapter(test::kAdapter, firmware(2));
  makeFile("first/a.rom", firmware(3));
  core::CimBroker& broker = test::brokerWithInventory();
  const core::LookAhead ahead(broker, {"Orvex_ElementSoftwareIdentity"});
  EXPECT_THAT(m_log.messages("os::readFile"), testing::Not(testing::IsEmpty()));
  m_log.clear();

  auto related = broker.getInstances("Orvex_ElementSoftwareIdentity");
  EXPECT_EQ(related.count(), 3u);
  EXPECT_EQ(related.first()->getProperty("Comparison")->toString(), "newer");
  EXPECT_THAT(m_log.messages("os::readFile"), testing::IsEmpty());
}

TEST_F(InventoryAgent, ListsWhatWasLastFoundUnderARequest) {
  core::CimBroker& broker = test::brokerWithInventory();
  makeFile("first/a.rom", firmware(1));
  EXPECT_EQ(broker.getInstances("Orvex_SoftwareIdentity").count(), 1u);
  makeFile("first/b.rom", firmware(2));
  {
    const core::LookAhead ahead(broker, {"Orvex_EthernetPort"});
    m_log.clear();
    EXPECT_EQ(broker.getInstances("Orvex_SoftwareIdentity").count(), 1u);
    EXPECT_EQ(broker.getInstances("Orvex_SoftwareIdentityResource").count(), 1u);
    EXPECT_THAT(m_log.messages("utils::QuorvelConfig::initialize"), testing::IsEmpty());
  }
  EXPECT_EQ(broker.getInstances("Orvex_SoftwareIdentity").count(), 2u);
}

}  // namespace
