// The fixture of the tests that look for firmware files.

#ifndef ORVEX_TESTS_INVENTORY_FIRMWAREFILESFIXTURE_H_
#define ORVEX_TESTS_INVENTORY_FIRMWAREFILESFIXTURE_H_

#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "inventory/FirmwareFiles.h"
#include "tests/inventory/InventoryFixture.h"
#include "tests/support/WaitUntil.h"

namespace test {

class FirmwareFilesFixture : public InventoryFixture {
 protected:
  std::vector<std::string> find() {
    m_log.clear();
    std::vector<std::string> paths;
    for (const inventory::FirmwareFilePtr& file : m_files.find()) {
      paths.push_back(file->path);
    }
    return paths;
  }

  // Returns the errors that the last look logged.
  std::vector<std::string> problems() const {
    std::vector<std::string> messages;
    for (const LogRecord& record : m_log.records(LogSink::EventLog)) {
      EXPECT_EQ(record.source, "FirmwareFiles");
      EXPECT_EQ(record.function, "inventory::FirmwareFiles::find");
      messages.push_back(record.message);
    }
    return messages;
  }

  // Returns how a file that is left out is reported.
  static std::string leftOut(const std::string& path, const std::string& reason) {
    return "Firmware file '" + path + "' is left out: " + reason;
  }

  inventory::FirmwareFiles m_files{kDeadline};
};

}  // namespace test

#endif  // ORVEX_TESTS_INVENTORY_FIRMWAREFILESFIXTURE_H_
