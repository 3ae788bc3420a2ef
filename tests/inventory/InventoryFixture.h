// The fixture of the inventory's tests: virtual adapters of 1af4:1041 with two ports each, and a
// configuration with two directories of firmware files.

#ifndef ORVEX_TESTS_INVENTORY_INVENTORYFIXTURE_H_
#define ORVEX_TESTS_INVENTORY_INVENTORYFIXTURE_H_

#include <filesystem>
#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "Os/QuorvelConfig.h"
#include "core/CimBroker.h"
#include "inventory/SoftwareInventoryAgent.h"
#include "tests/midapi/AdapterFixture.h"
#include "tests/midapi/AdaptersVariable.h"
#include "tests/support/LogCapture.h"
#include "tests/support/RomBuilder.h"
#include "tests/support/Settings.h"
#include "tests/support/TempDirectory.h"

namespace test {

inline constexpr const char* kAdapter = "0000:03:00";
inline constexpr const char* kOtherAdapter = "0000:04:00";

// Returns the broker, with the agent, which stays for the life of the process.
inline core::CimBroker& brokerWithInventory() {
  static const bool isAdded = (inventory::addSoftwareInventoryAgent(), true);
  static_cast<void>(isAdded);
  return core::GetCimBroker();
}

class InventoryFixture : public testing::Test {
 protected:
  InventoryFixture() {
    std::filesystem::create_directory(firstDirectory());
    std::filesystem::create_directory(secondDirectory());
    configure(firstDirectory().string() + ";" + secondDirectory().string());
  }

  [[nodiscard]] std::filesystem::path firstDirectory() const {
    return m_directory.path() / "first";
  }
  [[nodiscard]] std::filesystem::path secondDirectory() const {
    return m_directory.path() / "second";
  }
  // Replaces the firmware directories of the configuration.
  void configure(const std::string& directories) {
    m_settings.write({{"FWFilePath", directories}});
  }
  // Makes a file, "first/a.rom". Returns its path, as the inventory writes it: with slashes on
  // every platform.
  std::string makeFile(const std::string& name, const Bytes& content) const {
    return m_directory.write(name, content).generic_string();
  }

  // A PXE and a UEFI image of the version, for the adapters of the fixture.
  static Bytes firmware(std::uint8_t version) {
    return RomBuilder()
        .add(RomImage::legacy().version(version, 0).seed(version))
        .add(RomImage::efi().version(version, 0).seed(version))
        .build();
  }

  // Returns the instances of a provider.
  template <class Instance>
  static std::vector<Instance*> enumerate(core::CimClass& provider) {
    std::vector<Instance*> instances;
    core::InstanceList::Iterator cursor = provider.getInstances();
    for (core::CimInstance* instance = cursor.first(); instance != nullptr;
         instance = cursor.next()) {
      instances.push_back(dynamic_cast<Instance*>(instance));
    }
    return instances;
  }

  AdapterFixture m_adapters;
  AdaptersVariable m_variable{m_adapters.directory()};
  TempDirectory m_directory;
  Settings m_settings;
  utils::QuorvelConfig m_config{m_settings.path()};
  LogCapture m_log;
};

}  // namespace test

#endif  // ORVEX_TESTS_INVENTORY_INVENTORYFIXTURE_H_
