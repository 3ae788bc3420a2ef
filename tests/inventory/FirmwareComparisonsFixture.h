// The fixture of the tests that compare firmware files with adapters.

#ifndef ORVEX_TESTS_INVENTORY_FIRMWARECOMPARISONSFIXTURE_H_
#define ORVEX_TESTS_INVENTORY_FIRMWARECOMPARISONSFIXTURE_H_

#include <gmock/gmock.h>
#include <vector>

#include "inventory/Adapters.h"
#include "inventory/FirmwareComparisons.h"
#include "inventory/FirmwareFiles.h"
#include "tests/inventory/HeldReading.h"
#include "tests/inventory/InventoryFixture.h"
#include "tests/support/WaitUntil.h"

namespace test {

class FirmwareComparisonsFixture : public InventoryFixture {
 protected:
  ~FirmwareComparisonsFixture() override {
    // A look that has outlived its request asks for the adapters and the settings.
    m_reading.release();
    EXPECT_TRUE(waitUntil([this] { return !m_comparisons.isLooking(); }));
  }

  // Looks for the files, and compares them.
  void look() { m_comparisons.look(m_files.find()); }
  // Returns what each of the files that were last found is to an adapter.
  std::vector<ma::ImageComparison> find(const char* adapter = kAdapter) {
    const auto states = inventory::digestAdapters({{adapter, adapter + std::string(".0")}});
    std::vector<ma::ImageComparison> found;
    for (const inventory::FirmwareFilePtr& file : m_files.latest()) {
      found.push_back(m_comparisons.find(*file, states).at(0));
    }
    return found;
  }
  // Returns how many files a look compares by their bytes.
  int countRead() {
    const int before = m_reading.count();
    look();
    return m_reading.count() - before;
  }

  HeldReading m_reading;
  inventory::FirmwareFiles m_files{kDeadline};
  inventory::FirmwareComparisons m_comparisons{kDeadline, m_reading.reader()};
};

}  // namespace test

#endif  // ORVEX_TESTS_INVENTORY_FIRMWARECOMPARISONSFIXTURE_H_
