#include <gtest/gtest.h>

#include "midapi/PciIds.h"

namespace {

using ma::describeIds;

TEST(PciIds, AreToldAsPeopleWriteThem) {
  EXPECT_EQ(describeIds({0x8086, 0x1592, 0, 0}), "8086:1592");
  EXPECT_EQ(describeIds({0x8086, 0x1592, 0x8086, 2}), "8086:1592 sub 8086:0002");
}

TEST(PciIds, TellWhatIsAny) {
  EXPECT_EQ(describeIds({}), "any");
  EXPECT_EQ(describeIds({0x8086, 0, 0, 0}), "8086:any");
  EXPECT_EQ(describeIds({0, 0x1592, 0, 2}), "any:1592 sub any:0002");
}

TEST(PciIds, OfADeviceAreExact) {
  EXPECT_EQ(ma::describeDevice({0x8086, 0x10D3, 0x8086, 0}), "8086:10d3 sub 8086:0000");
}

}  // namespace
