// The value names against the words and numbers by which the inventory knows the same things.

#include <algorithm>
#include <gtest/gtest.h>
#include <span>
#include <string_view>

#include "core/ValueNames.h"
#include "inventory/InventoryTexts.h"
#include "inventory/Orvex_SoftwareIdentity.h"

namespace {

template <class Row>
const Row& find(std::span<const Row> rows, std::string_view name) {
  return *std::find_if(rows.begin(), rows.end(),
                       [name](const Row& row) { return row.name == name; });
}

std::span<const core::ValueName> valuesOf(std::string_view className, std::string_view property) {
  return find(find(inventory::getInventoryTexts(), className).properties, property).values;
}

TEST(InventoryTexts, NameEveryWordOfAComparison) {
  for (const char* word : {"installed", "running", "stored", "newer", "older", "same",
                           "same version", "other types", "not updatable", "unknown"}) {
    EXPECT_NE(core::findValueName(valuesOf("Orvex_ElementSoftwareIdentity", "Comparison"), word),
              "")
        << word;
  }
}

TEST(InventoryTexts, NameTheKindsOfImages) {
  const std::span<const core::ValueName> kinds = valuesOf("Orvex_SoftwareIdentity", "ImageKind");
  EXPECT_EQ(core::findValueName(kinds, Orvex_SoftwareIdentity::kInstalledComponent),
            "Held by an adapter");
  EXPECT_EQ(core::findValueName(kinds, Orvex_SoftwareIdentity::kFirmwareImage), "Firmware image");
}

}  // namespace
