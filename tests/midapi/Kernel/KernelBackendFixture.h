// The machine's adapters that a test plays, and the back end that has them.

#ifndef ORVEX_TESTS_MIDAPI_KERNEL_KERNELBACKENDFIXTURE_H_
#define ORVEX_TESTS_MIDAPI_KERNEL_KERNELBACKENDFIXTURE_H_

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "midapi/Kernel/KernelFlashBackend.h"
#include "tests/midapi/Kernel/PlayedDrivers.h"
#include "tests/midapi/Kernel/SysfsFixture.h"
#include "tests/midapi/WatchedFileSystem.h"
#include "tests/support/FakeClock.h"
#include "tests/support/RomBuilder.h"
#include "tests/support/TempDirectory.h"

namespace test {

inline constexpr ma::AdapterAddress kKernelAdapter{0, 3, 0};
inline constexpr ma::PortId kKernelPort{kKernelAdapter, 0};
inline constexpr const char* kKernelFunction = "0000:03:00.0";
inline constexpr const char* kOtherFunction = "0000:04:00.0";  // which a test may add

// For such functions.
[[nodiscard]] RomImage kernelRomImage();
// A package with fw.undi, an option ROM of 1024 bytes, and fw.mgmt of 976 bytes.
[[nodiscard]] Bytes kernelPackage(const std::string& undi, const std::string& mgmt);

// One adapter whose driver has devlink, with fw.undi 1.0.0 and fw.mgmt 7.1.0; a flash makes them
// 1.1.0 and 7.2.0.
class KernelBackendFixture : public testing::Test {
 protected:
  KernelBackendFixture();

  void addFunction(const std::string& pci, const std::string& driver);
  // What the driver says that the flash holds.
  void store(const std::string& undi, const std::string& mgmt,
             const std::string& pci = kKernelFunction);
  // What is known of the drivers is not fresh any more.
  void passASecond() { m_clock.sleepFor(std::chrono::seconds(1)); }

  void write(const Bytes& image = kernelPackage("1.1.0", "7.2.0"),
             const ma::PortId& port = kKernelPort);
  // Returns the text of its failure.
  std::string failWriting();

  // Returns the only adapter.
  ma::AdapterListing listing();
  std::vector<std::string> staged() const;
  bool hasEntry(const std::string& name = "0000-03-00.json") const;

  SysfsFixture m_sysfs;
  TempDirectory m_directory;
  const std::filesystem::path m_firmware = m_directory.path() / "firmware";
  const ma::KernelPlaces m_places{m_sysfs.root(), m_directory.path() / "kernel"};
  WatchedFileSystem m_files;
  FakeClock m_clock;
  PlayedDrivers m_drivers;
  ma::PciNames m_names{m_directory.path() / "pci.ids"};  // none
  utils::FlashSettings m_settings;
  ma::WriteProgress m_progress;
  ma::KernelFlashBackend m_backend{
      m_files, m_places, m_drivers, m_names, [this] { return m_settings; }, m_clock};
};

}  // namespace test

#endif  // ORVEX_TESTS_MIDAPI_KERNEL_KERNELBACKENDFIXTURE_H_
