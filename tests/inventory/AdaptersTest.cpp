#include <gmock/gmock.h>

#include "inventory/Adapters.h"
#include "tests/inventory/InventoryFixture.h"

namespace {

using Adapters = test::InventoryFixture;

TEST_F(Adapters, AreNamedByTheirPortsWithoutTheFunction) {
  EXPECT_EQ(inventory::getAdapterIdentity("0000:03:00.1"), "0000:03:00");
  EXPECT_EQ(inventory::getAdapterIdentity("0000:03:00"), "0000:03:00");
}

TEST_F(Adapters, AreFoundOnceEachWithTheirFirstPort) {
  m_adapters.makeAdapter("0000:04:00", {});
  m_adapters.makeAdapter("0000:03:00", {});

  const std::vector<inventory::Adapter> found = inventory::findAdapters();

  ASSERT_EQ(found.size(), 2u);
  EXPECT_EQ(found[0].identity, "0000:03:00");
  EXPECT_EQ(found[0].firstPort, "0000:03:00.0");
  EXPECT_EQ(found[1].identity, "0000:04:00");
  EXPECT_EQ(found[1].firstPort, "0000:04:00.0");
}

}  // namespace
