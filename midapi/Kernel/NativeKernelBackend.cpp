#include <filesystem>
#include <map>
#include <memory>

#include "midapi/FileSystem.h"
#include "midapi/Kernel/KernelCalls.h"
#include "midapi/Kernel/KernelFlashBackend.h"
#include "midapi/Kernel/PciNames.h"
#include "midapi/KernelBackend.h"
#include "platform/Clock.h"
#include "platform/Mutex.h"
#include "platform/Texts.h"

namespace ma {
namespace {

namespace fs = std::filesystem;
using SettingsReader = utils::FlashSettings (*)();

// A folder that stands for the machine; its files are all there is.
constexpr const char* kRootVariable = "ORVEX_KERNEL_ROOT";

fs::path below(const fs::path& root, const fs::path& path) {
  return root.empty() ? path : root / path.relative_path();
}

KernelPlaces placesIn(const fs::path& root) {
  KernelPlaces places;
  places.sysfs = below(root, places.sysfs);
  places.journal = below(root, places.journal);
  return places;
}

InquirySettings inquiryIn(const fs::path& root) {
  InquirySettings settings;
  settings.of =
      root.empty() ? FunctionInquiry::Of::DriverAndFiles : FunctionInquiry::Of::FilesAlone;
  settings.locks = below(root, "/run/lock");
  return settings;
}

utils::FlashSettings settingsIn(const fs::path& root, SettingsReader reader) {
  utils::FlashSettings settings = reader();
  const fs::path folder = platform::toPath(settings.firmwareFolder);
  settings.firmwareFolder = below(root, folder).string();
  return settings;
}

class Machine {
 public:
  Machine(const fs::path& root, SettingsReader settings)
      : m_drivers(inquiryIn(root)),
        m_backend(
            nativeFileSystem(), placesIn(root), m_drivers, systemPciNames(),
            [root, settings] { return settingsIn(root, settings); }, platform::steadyClock()) {}

  [[nodiscard]] FlashBackend& backend() { return m_backend; }

 private:
  KernelCalls m_drivers;
  KernelFlashBackend m_backend;
};

// It lives as long as the process: job threads may still ask while it exits.
class Machines {
 public:
  [[nodiscard]] FlashBackend& at(const fs::path& root, SettingsReader settings) {
    const platform::Lock lock(m_mutex);
    std::unique_ptr<Machine>& machine = m_machines[root];
    if (machine == nullptr) {
      machine = std::make_unique<Machine>(root, settings);
    }
    return machine->backend();
  }

 private:
  platform::Mutex m_mutex;
  std::map<fs::path, std::unique_ptr<Machine>> m_machines ORVEX_GUARDED_BY(m_mutex);
};

}  // namespace

FlashBackend* kernelBackend(utils::FlashSettings (*settings)()) {
  static Machines& theMachines = *new Machines;
  return &theMachines.at(environmentPath(kRootVariable), settings);
}

}  // namespace ma
