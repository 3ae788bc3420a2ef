// The back end of the adapters that the Linux kernel drives.
//
// Firmware goes to an adapter through its driver: by devlink, or by the driver's own function of
// ETHTOOL_FLASHDEV where the table of drivers says that it has one. The library checks the file,
// the kernel is given the very bytes that were checked, and its verdict counts; then the stored
// versions are read back and compared with the file's. The driver decides what becomes of a write
// that fails in the middle, so an update here is not all or nothing: beginUpdate() keeps others of
// this process away, and writeFlash() writes at once. Boot types and a record of what is installed
// are not offered by drivers.
//
// The kernel goes on with a flash whose process was killed. Its entry in the journal stays then,
// and list() and interruptedWrites() say what has become of it, as far as versions tell; it goes
// with the next update, or when they find that the flash was finished after all.

#ifndef ORVEX_MIDAPI_KERNEL_KERNELFLASHBACKEND_H_
#define ORVEX_MIDAPI_KERNEL_KERNELFLASHBACKEND_H_

#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Utils/FlashSettings.h"
#include "midapi/FlashBackend.h"
#include "midapi/Kernel/DriverCalls.h"
#include "midapi/Kernel/FlashJournal.h"
#include "midapi/Kernel/InterruptedFlashes.h"
#include "midapi/Kernel/KernelAdapters.h"
#include "midapi/Kernel/PciNames.h"
#include "midapi/Kernel/SeenAdapter.h"
#include "platform/Clock.h"
#include "platform/Mutex.h"

namespace ma {

// Where the back end finds what it needs; a test has them in a folder of its own.
struct KernelPlaces {
  std::filesystem::path sysfs = "/sys";
  std::filesystem::path journal = "/var/lib/orvex/kernel";
};

class KernelFlashBackend final : public FlashBackend {
 public:
  // Referents outlive the back end. `settings` is asked at each operation.
  KernelFlashBackend(FileSystem& files, KernelPlaces places, DriverCalls& drivers, PciNames& names,
                     std::function<utils::FlashSettings()> settings, platform::Clock& clock);

  // FlashBackend
  std::string describe(const AdapterAddress& adapter) override;
  bool hasAdapter(const AdapterAddress& adapter) override;
  utils::StringArray enumerateAdapters() override;
  AdapterList list() override;
  AdapterList outline(OutlineDepth depth) override;
  std::vector<std::string> interruptedWrites() override;
  bool isUpdatable(const PortId& port) override;
  std::vector<utils::FirmwareVersionInfo> installedFirmware(const PortId& port) override;
  std::vector<FirmwareVersions> firmwareVersions(const PortId& port) override;
  void awaitAnswer(const AdapterAddress& adapter) override;
  Preparation prepare(const PortId& port, ConstBytes file, std::span<std::uint8_t> buffer,
                      const std::vector<utils::FirmwareType>& types) override;
  ImageComparison compare(const PortId& port, ConstBytes file) override;
  std::uint64_t digest(const PortId& port) override;
  bool beginUpdate(const AdapterAddress& adapter) override;
  void endUpdate(const AdapterAddress& adapter) noexcept override;
  void setBootType(const PortId& port, BootType bootType) override;
  void writeFlash(const PortId& port, ConstBytes image, WriteProgress& progress) override;
  void recordInstalled(const PortId& port, const std::vector<utils::FirmwareType>& types) override;
  Activation activate(const AdapterAddress& adapter) override;

 private:
  struct Subject;

  // Throw FlashFault for what there is none of.
  [[nodiscard]] KernelAdapter need(const AdapterAddress& address);
  [[nodiscard]] Subject subjectOf(const PortId& port);
  [[nodiscard]] Subject subjectOf(const PortId& port, std::optional<KernelAdapter> adapter) const;

  // Returns why this process can write no firmware at all; empty where it can.
  [[nodiscard]] std::string whyNobody() const;
  [[nodiscard]] std::filesystem::path firmwareFolder() const;

  // The steps of writeFlash.
  // Returns the adapter, which is the one that a check of the image saw where there was one. Throws
  // where it is not, or where that cannot be told.
  [[nodiscard]] Subject subjectToWrite(const PortId& port, std::uint64_t digest);
  // Looks where the function is now: its network interface may have been renamed, and its name be
  // another adapter's. Asks no driver.
  void lookAgain(Subject& subject) const;
  [[nodiscard]] NetlinkAck flash(const Subject& subject, const std::string& file,
                                 std::uint64_t bytes, WriteProgress& progress);
  // Compares what the adapter shows now, and throws where that is not what was written. Returns
  // what a person should know where nothing can be compared.
  [[nodiscard]] std::string verify(const Subject& written, ConstBytes image,
                                   const FlashEntry& entry, const FlashJournal::Claim& claim);

  FileSystem& m_files;
  const KernelPlaces m_places;
  DriverCalls& m_drivers;
  PciNames& m_names;
  const std::function<utils::FlashSettings()> m_settings;
  platform::Clock& m_clock;
  const FlashJournal m_journal;
  const InterruptedFlashes m_interrupted;
  KernelAdapters m_adapters;
  SeenAdapters m_checked;

  platform::Mutex m_mutex;
  std::set<AdapterAddress> m_updates ORVEX_GUARDED_BY(m_mutex);  // that have begun
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_KERNELFLASHBACKEND_H_
