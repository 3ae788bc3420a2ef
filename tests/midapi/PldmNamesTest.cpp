#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "midapi/PldmNames.h"

namespace {

using ma::describeActivation;
using ma::describeClassification;
using ma::PldmDescriptorType;

std::string described(PldmDescriptorType type, std::vector<std::uint8_t> data,
                      std::string title = "") {
  return ma::describeDescriptor({type, std::move(title), std::move(data)});
}

TEST(PldmNames, KnowsComponentsThatDriversName) {
  EXPECT_EQ(ma::describeComponent(5), "fw.undi (component 5)");
  EXPECT_EQ(ma::describeComponent(8), "fw.netlist (component 8)");
  EXPECT_EQ(ma::describeComponent(7), "component 7");
}

TEST(PldmNames, KnowsClassifications) {
  EXPECT_EQ(describeClassification(0), "unknown");
  EXPECT_EQ(describeClassification(10), "firmware");
  EXPECT_EQ(describeClassification(13), "software bundle");
  EXPECT_EQ(describeClassification(14), "classification 0xe");
  EXPECT_EQ(describeClassification(0xFFFF), "downstream device");
}

TEST(PldmNames, ListsWhatActivates) {
  EXPECT_EQ(describeActivation(0), "");
  EXPECT_EQ(describeActivation(0x01), "automatic");
  EXPECT_EQ(describeActivation(0x28), "system reboot, AC power cycle");
  EXPECT_EQ(describeActivation(0x8010), "DC power cycle, bit 15");
}

TEST(PldmNames, DescribesDescriptors) {
  EXPECT_EQ(described(PldmDescriptorType::PciVendor, {0xF4, 0x1A}), "PCI vendor 1af4");
  EXPECT_EQ(described(PldmDescriptorType::PciDevice, {0x41, 0x10}), "PCI device 1041");
  EXPECT_EQ(described(PldmDescriptorType::PciSubsystemVendor, {0, 0}), "PCI subsystem vendor any");
  EXPECT_EQ(described(PldmDescriptorType::PciSubsystemDevice, {1, 0}), "PCI subsystem device 0001");
  EXPECT_EQ(described(PldmDescriptorType::PciRevision, {0}), "PCI revision 00");
  EXPECT_EQ(described(PldmDescriptorType::IanaEnterprise, {0x9C, 1, 0, 0}), "IANA enterprise 412");
  EXPECT_EQ(described(PldmDescriptorType::Uuid, {0x00, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77,
                                                 0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF}),
            "UUID 00112233-4455-6677-8899-aabbccddeeff");
  EXPECT_EQ(described(PldmDescriptorType::VendorDefined, {1, 2}, "Slot"), "Slot: 0102");
  EXPECT_EQ(described(PldmDescriptorType::VendorDefined, {1}), "vendor-defined: 01");
  EXPECT_EQ(described(PldmDescriptorType::AcpiVendor, {0x41, 0x42, 0x43, 0}), "type 0x4: 41424300");
  EXPECT_EQ(described(static_cast<PldmDescriptorType>(0x107), {}), "type 0x107: ");
}

}  // namespace
