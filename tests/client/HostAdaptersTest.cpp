#include <gmock/gmock.h>

#include "client/BrokerConnection.h"
#include "client/HostAdapters.h"
#include "tests/client/FakeInventory.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class HostAdaptersTest : public testing::Test {
 protected:
  HostAdaptersTest() { m_broker.addAgent(&m_inventory); }

  void addPort(const std::string& identifier) {
    m_ports.add(std::make_unique<test::FakeDevice>("Orvex_EthernetPort", identifier));
  }

  test::FakeIdentity& addComponent(const std::string& place, const std::string& type,
                                   const std::string& version) {
    test::FakeIdentity& component = m_inventory.addComponent(place);
    component.TargetTypes.setValue({type});
    component.VersionString.setValue(version);
    return component;
  }

  static std::vector<std::string> portsOf(const client::HostAdapter& adapter) {
    std::vector<std::string> identifiers;
    for (const client::HostAdapter::Port& port : adapter.ports) {
      identifiers.push_back(port.identifier);
    }
    return identifiers;
  }

  core::CimBroker m_broker;
  client::BrokerConnection m_connection{m_broker};
  test::FakeInventory m_inventory;
  test::FakeProvider& m_ports = m_inventory.serve("Orvex_EthernetPort");
};

TEST_F(HostAdaptersTest, HaveTheirPortsAndWhatIsInstalled) {
  test::FakeDevice& third = m_inventory.addAdapter("0000:03:00");
  m_inventory.addAdapter("0000:04:00");
  for (const char* port : {"0000:03:00.0", "0000:03:00.1", "0000:04:00.0"}) {
    addPort(port);
  }
  m_inventory.compare(addComponent("0000:03:00/0", "IMG_PXE", "1.0"), third, "installed");
  m_inventory.compare(addComponent("0000:03:00/1", "IMG_UEFI", "2.0"), third, "installed");
  m_inventory.compare(m_inventory.addFile("/fw/a.rom"), third, "newer");
  const std::vector<client::HostAdapter> adapters = client::readHostAdapters(m_connection);
  ASSERT_THAT(adapters, SizeIs(2));
  EXPECT_EQ(adapters[0].pci, "0000:03:00");
  EXPECT_THAT(portsOf(adapters[0]), ElementsAre("0000:03:00.0", "0000:03:00.1"));
  ASSERT_THAT(adapters[0].components, SizeIs(2));
  EXPECT_EQ(adapters[0].components[1].type, "IMG_UEFI");
  EXPECT_EQ(adapters[0].components[1].version, "2.0");
  EXPECT_THAT(portsOf(adapters[1]), ElementsAre("0000:04:00.0"));
  EXPECT_FALSE(adapters[0].description);
  EXPECT_THAT(adapters[1].components, IsEmpty());
}

TEST_F(HostAdaptersTest, HaveWhatRunsAndWhatIsStored) {
  test::FakeDevice& adapter = m_inventory.addAdapter("0000:03:00");
  const auto tell = [&](const char* part, const char* version, const char* relation) {
    test::FakeIdentity& software = m_inventory.addComponent(std::string("0000:03:00/") + part);
    software.InstanceID.setValue(std::string("Orvex:") + relation + part);
    software.VersionString.setValue(version);
    m_inventory.compare(software, adapter, relation);
  };
  tell("fw.undi", "1.0.0", "running");
  tell("fw.undi", "1.1.0", "stored");
  tell("fw.mgmt", "7.1.0", "running");
  const std::vector<client::HostAdapter> adapters = client::readHostAdapters(m_connection);
  ASSERT_THAT(adapters, SizeIs(1));
  EXPECT_THAT(adapters[0].components, IsEmpty());
  std::vector<std::string> told;
  for (const auto& [name, running, stored] : adapters[0].versions) {
    told.push_back(name + " " + running + ">" + stored);
  }
  EXPECT_THAT(told, ElementsAre("fw.undi 1.0.0>1.1.0", "fw.mgmt 7.1.0>"));
}

// What a host of this version says of an adapter.
class DescribedAdapter : public test::FakeDevice {
 public:
  DescribedAdapter() : FakeDevice("Orvex_PortController", "0000:05:00") {
    ElementName.setValue("Lab adapter");
    VendorID.setValue(0x1AF4);
    PCIDeviceID.setValue(0x1041);
    IsUpdatable.setValue(0);
    WhyNotUpdatable.setValue("nobody may");
  }

  core::CimPropertyString ElementName{"ElementName", this};
  core::CimPropertyUint16 VendorID{"VendorID", this};
  core::CimPropertyUint16 PCIDeviceID{"PCIDeviceID", this};
  core::CimPropertyBoolean IsUpdatable{"IsUpdatable", this};
  core::CimPropertyString WhyNotUpdatable{"WhyNotUpdatable", this};
  core::CimPropertyString DriverName{"DriverName", this};
};

class DescribedPort : public test::FakeDevice {
 public:
  DescribedPort() : FakeDevice("Orvex_EthernetPort", "0000:05:00.0") {
    NetworkAddresses.setValue({"02544E000030"});
    BootType.setValue(4);
    InterfaceNames.setValue({"eth0"});
  }

  core::CimPropertyString_arr NetworkAddresses{"NetworkAddresses", this};
  core::CimPropertyUint16 BootType{"BootType", this};
  core::CimPropertyString_arr InterfaceNames{"InterfaceNames", this};
};

TEST_F(HostAdaptersTest, HaveWhatAHostTellsOfThem) {
  m_inventory.adapters().add(std::make_unique<DescribedAdapter>());
  m_ports.add(std::make_unique<DescribedPort>());
  const std::vector<client::HostAdapter> adapters = client::readHostAdapters(m_connection);
  ASSERT_THAT(adapters, SizeIs(1));
  ASSERT_TRUE(adapters[0].description);
  const client::HostAdapter::Description& description = *adapters[0].description;
  EXPECT_EQ(description.name, "Lab adapter");
  EXPECT_EQ(description.vendor, 0x1AF4);
  EXPECT_EQ(description.device, 0x1041);
  EXPECT_FALSE(description.isUpdatable);
  EXPECT_EQ(description.whyNotUpdatable, "nobody may");
  EXPECT_EQ(description.driver, "");
  ASSERT_THAT(adapters[0].ports, SizeIs(1));
  EXPECT_EQ(adapters[0].ports[0].mac, "02:54:4e:00:00:30");
  EXPECT_EQ(adapters[0].ports[0].bootType, 4U);
  EXPECT_THAT(adapters[0].ports[0].interfaces, ElementsAre("eth0"));
}

TEST_F(HostAdaptersTest, AreNoneWhereThereIsNone) {
  EXPECT_THAT(client::readHostAdapters(m_connection), IsEmpty());
}

}  // namespace
