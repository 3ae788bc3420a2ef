#include <gmock/gmock.h>
#include <string>
#include <utility>
#include <vector>

#include "inventory/Orvex_EthernetPortClass.h"
#include "inventory/Orvex_PortController.h"
#include "inventory/Orvex_PortControllerClass.h"
#include "tests/inventory/InventoryFixture.h"

namespace {

using testing::ElementsAre;

class PortControllerClass : public test::InventoryFixture {
 protected:
  std::vector<Orvex_PortController*> controllers() {
    return enumerate<Orvex_PortController>(m_provider);
  }

  // Returns the identities of the ports that the controller calls its own.
  std::vector<std::string> portsOf(const Orvex_PortController& controller) {
    std::vector<std::string> identities;
    for (const Orvex_EthernetPort* port : enumerate<Orvex_EthernetPort>(m_ports)) {
      if (controller.ownsPort(*port)) {
        identities.push_back(port->getIdentity());
      }
    }
    return identities;
  }

  Orvex_EthernetPortClass m_ports;
  Orvex_PortControllerClass m_provider;
};

TEST_F(PortControllerClass, ServesAControllerForEachAdapter) {
  EXPECT_EQ(m_provider.getName(), "Orvex_PortController");
  m_adapters.makeAdapter(test::kAdapter, {});
  m_adapters.makeAdapter(test::kOtherAdapter, {});
  std::vector<std::string> identities;
  for (Orvex_PortController* controller : controllers()) {
    identities.push_back(controller->DeviceID.getValue());
  }
  EXPECT_THAT(identities, ElementsAre("0000:03:00", "0000:04:00"));
}

std::vector<std::string> problems;
std::vector<std::string> findProblems() {
  return problems;
}

TEST_F(PortControllerClass, ReportsWhatSomebodyShouldMendOnce) {
  Orvex_PortControllerClass provider(findProblems);
  const auto recordsOf = [&](std::vector<std::string> found) {
    problems = std::move(found);
    m_log.clear();
    enumerate<Orvex_PortController>(provider);
    std::vector<std::string> texts;
    for (const test::LogRecord& record : m_log.records(test::LogSink::EventLog)) {
      texts.push_back(record.message);
    }
    return texts;
  };

  EXPECT_THAT(recordsOf({"0000:03:00: 100% unknown"}), ElementsAre("0000:03:00: 100% unknown"));
  EXPECT_THAT(recordsOf({"0000:03:00: 100% unknown", "another"}), ElementsAre("another"));
  EXPECT_THAT(recordsOf({}), testing::IsEmpty());
  EXPECT_THAT(recordsOf({"another"}), ElementsAre("another"));
}

TEST_F(PortControllerClass, KnowsThePortsOfItsControllers) {
  for (const char* pci : {"0000:03:00", "0000:03:01", "0001:03:00"}) {
    m_adapters.makeAdapter(pci, {});
  }
  const std::vector<Orvex_PortController*> all = controllers();

  ASSERT_EQ(all.size(), 3u);
  EXPECT_THAT(portsOf(*all[0]), ElementsAre("0000:03:00.0", "0000:03:00.1"));
  EXPECT_THAT(portsOf(*all[1]), ElementsAre("0000:03:01.0", "0000:03:01.1"));
  EXPECT_THAT(portsOf(*all[2]), ElementsAre("0001:03:00.0", "0001:03:00.1"));
}

TEST_F(PortControllerClass, KeepsTheControllersForAsLongAsNothingChanges) {
  m_adapters.makeAdapter(test::kAdapter, {});
  const std::vector<Orvex_PortController*> first = controllers();
  EXPECT_EQ(controllers(), first);

  m_adapters.makeAdapter(test::kOtherAdapter, {});
  const std::vector<Orvex_PortController*> both = controllers();
  ASSERT_EQ(both.size(), 2u);
  EXPECT_EQ(both[1]->DeviceID.getValue(), test::kOtherAdapter);
  std::filesystem::remove_all(m_adapters.folder(test::kAdapter));
  ASSERT_EQ(controllers().size(), 1u);
  EXPECT_EQ(controllers().front()->DeviceID.getValue(), test::kOtherAdapter);
}

TEST_F(PortControllerClass, DescribesAController) {
  m_adapters.makeAdapter(test::kAdapter, {});
  Orvex_PortController& controller = *controllers().at(0);
  EXPECT_EQ(controller.getClassName(), "Orvex_PortController");
  EXPECT_TRUE(controller.DeviceID.isKey());
  EXPECT_EQ(controller.Caption.getValue(), "Ethernet Adapter 0000:03:00");
  EXPECT_EQ(controller.ControllerType.getValue(), 2);
}

TEST_F(PortControllerClass, TellsWhatAnAdapterIsAndWhetherItCanBeUpdated) {
  m_adapters.makeAdapter(test::kAdapter, {});
  m_adapters.set(test::kAdapter, "/name", "\"Lab adapter\"");
  Orvex_PortController& controller = *controllers().at(0);
  EXPECT_EQ(controller.ElementName.getValue(), "Lab adapter");
  EXPECT_EQ(controller.ProtocolSupported.getValue(), 5);
  EXPECT_EQ(controller.VendorID.getValue(), 0x1AF4);
  EXPECT_EQ(controller.PCIDeviceID.getValue(), 0x1041);
  EXPECT_EQ(controller.IsUpdatable.getValue(), 1);
  EXPECT_EQ(controller.IsBeingWritten.getValue(), 0);
  for (const char* name : {"SubsystemVendorID", "SubsystemID", "PartNumber", "SerialNumber",
                           "DriverName", "WhyNotUpdatable", "EnabledState"}) {
    EXPECT_TRUE(controller.getProperty(name)->isNull()) << name;
  }
  m_adapters.set(test::kAdapter, "/updatable", "false");
  EXPECT_EQ(controllers().at(0)->IsUpdatable.getValue(), 0);
}

TEST_F(PortControllerClass, WithoutAdaptersIsEmpty) {
  EXPECT_THAT(controllers(), testing::IsEmpty());
}

}  // namespace
