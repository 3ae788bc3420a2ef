#include <gmock/gmock.h>

#include "Os/Environment.h"
#include "inventory/DeviceValues.h"

namespace {

class Device : public CIM_LogicalDevice {
 public:
  [[nodiscard]] std::string getClassName() const override { return "Test_Device"; }
};

TEST(SetDeviceValues, FillsKeysAndNames) {
  os::setEnvironment("COMPUTERNAME", "host7");
  Device device;

  inventory::setDeviceValues(device, "id 1", "A device");

  EXPECT_EQ(device.getPath(),
            "Test_Device.SystemCreationClassName=\"CIM_UnitaryComputerSystem\","
            "SystemName=\"host7\",CreationClassName=\"Test_Device\",DeviceID=\"id 1\"");
  EXPECT_EQ(device.Caption.getValue(), "A device");
  EXPECT_EQ(device.Description.getValue(), "A device");
  EXPECT_EQ(device.ElementName.getValue(), "A device");
  EXPECT_EQ(device.Name.getValue(), "id 1");
  EXPECT_THAT(device.OperationalStatus.getValue(), testing::ElementsAre(2));
}

TEST(DeviceSet, DiffersByTheSystemAndByTheDevices) {
  os::setEnvironment("COMPUTERNAME", "host7");
  ma::AdapterListing one;
  one.pci = "a";
  ma::AdapterListing other;
  other.pci = "b";
  const inventory::DeviceSet devices = inventory::makeDeviceSet({one, other});

  EXPECT_EQ(devices.systemName, "host7");
  EXPECT_EQ(inventory::makeDeviceSet({one, other}), devices);
  EXPECT_NE(inventory::makeDeviceSet({other, one}), devices);
  os::setEnvironment("COMPUTERNAME", "host8");
  EXPECT_NE(inventory::makeDeviceSet({one, other}), devices);
}

}  // namespace
