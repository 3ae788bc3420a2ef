// The agent over a folder that imitates a machine with adapters that the kernel drives.

#include <filesystem>
#include <gmock/gmock.h>
#include <string>

#include "core/LookAhead.h"
#include "inventory/Orvex_EthernetPort.h"
#include "inventory/Orvex_PortController.h"
#include "tests/inventory/InventoryFixture.h"
#include "tests/midapi/Kernel/SysfsFixture.h"
#include "tests/support/Variables.h"

namespace {

using testing::ElementsAre;

constexpr const char* kFunction = "0000:03:00.0";

class DrivenAdapters : public test::InventoryFixture {
 protected:
  DrivenAdapters() {
    std::filesystem::create_directory_symlink(m_sysfs.root(), m_root.path() / "sys");
    test::unsetVariable("ORVEX_ADAPTERS");  // which the fixture sets anew
    test::setVariable("ORVEX_KERNEL_ROOT", m_root.path().string());
    m_settings.write({{"Adapters", "kernel"}});
    m_sysfs.addFunction(kFunction);
    m_sysfs.bindDriver(kFunction, "testnic");
    m_sysfs.addInterface(kFunction, "eth0", "02:54:4e:00:00:30");
    m_sysfs.setLink("eth0", "type", "1");
    m_sysfs.setLink("eth0", "flags", "0x1003");
    m_sysfs.setLink("eth0", "operstate", "up");
    m_sysfs.setLink("eth0", "mtu", "1500");
    m_sysfs.setLink("eth0", "addr_assign_type", "0");
    m_sysfs.setLink("eth0", "speed", "10000");
  }
  ~DrivenAdapters() override { test::unsetVariable("ORVEX_KERNEL_ROOT"); }

  Orvex_EthernetPort& port() {
    return dynamic_cast<Orvex_EthernetPort&>(*m_broker.getInstances("Orvex_EthernetPort").first());
  }
  Orvex_PortController& controller() {
    return dynamic_cast<Orvex_PortController&>(
        *m_broker.getInstances("Orvex_PortController").first());
  }

  test::TempDirectory m_root;
  test::SysfsFixture m_sysfs;
  core::CimBroker& m_broker = test::brokerWithInventory();
};

TEST_F(DrivenAdapters, TellOfALinkWhatTheKernelDoes) {
  ASSERT_EQ(m_broker.getInstances("Orvex_EthernetPort").count(), 1u);
  EXPECT_EQ(port().DeviceID.getValue(), kFunction);
  EXPECT_EQ(port().PermanentAddress.getValue(), "02544E000030");
  EXPECT_THAT(port().NetworkAddresses.getValue(), ElementsAre("02544E000030"));
  EXPECT_EQ(port().LinkTechnology.getValue(), 2);
  EXPECT_EQ(port().EnabledState.getValue(), 2);
  EXPECT_EQ(port().Speed.getValue(), 10'000'000'000u);
  EXPECT_EQ(port().ActiveMaximumTransmissionUnit.getValue(), 1500u);
  EXPECT_THAT(port().InterfaceNames.getValue(), ElementsAre("eth0"));
  EXPECT_TRUE(port().BootType.isNull());
  EXPECT_TRUE(port().MaxSpeed.isNull());
}

TEST_F(DrivenAdapters, TellWhoDrivesThemAndWhyTheyCannotBeUpdated) {
  ASSERT_EQ(m_broker.getInstances("Orvex_PortController").count(), 1u);
  EXPECT_EQ(controller().VendorID.getValue(), 0x8086);
  EXPECT_EQ(controller().PCIDeviceID.getValue(), 0x10D3);
  EXPECT_EQ(controller().SubsystemVendorID.getValue(), 0x1AF4);
  EXPECT_EQ(controller().SubsystemID.getValue(), 0x1100);
  EXPECT_EQ(controller().DriverName.getValue(), "testnic");
  EXPECT_EQ(controller().IsUpdatable.getValue(), 0);
  EXPECT_THAT(controller().WhyNotUpdatable.getValue(), testing::StartsWith("its driver testnic"));
}

TEST_F(DrivenAdapters, AreAskedBeforeARequest) {
  for (const char* className : {"Orvex_EthernetPort", "Orvex_SystemDevice"}) {
    m_sysfs.setLink("eth0", "speed", "25000");
    const core::LookAhead ahead(m_broker, {className});
    // Asked just before, the driver is not asked again.
    m_sysfs.setLink("eth0", "speed", "1");
    EXPECT_EQ(port().Speed.getValue(), 25'000'000'000u) << className;
    m_sysfs.setLink("eth0", "operstate", "down");
    EXPECT_EQ(port().EnabledState.getValue(), 6);
    EXPECT_TRUE(port().Speed.isNull());
    m_sysfs.setLink("eth0", "operstate", "up");
    std::filesystem::rename(m_sysfs.folder(kFunction), m_sysfs.folder("old"));
    std::filesystem::remove(m_sysfs.root() / "bus/pci/devices" / kFunction);
    m_sysfs.addFunction(kFunction);  // another one
    m_sysfs.bindDriver(kFunction, "testnic");
    std::filesystem::rename(m_sysfs.folder("old") / "net", m_sysfs.folder(kFunction) / "net");
    std::filesystem::remove_all(m_sysfs.folder("old"));
  }
}

}  // namespace
