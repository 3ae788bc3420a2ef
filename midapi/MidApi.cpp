#include "midapi/MidApi.h"

#include <atomic>
#include <span>
#include <utility>

#include "midapi/AdapterId.h"
#include "midapi/BackendSet.h"
#include "midapi/FirmwareFormat.h"
#include "midapi/FlashBackend.h"
#include "midapi/Hex.h"
#include "midapi/KernelBackend.h"
#include "midapi/OptionRom.h"
#include "midapi/Virtual/VirtualFlashBackend.h"
#include "midapi/WriteProgress.h"
#include "platform/Clock.h"
#include "platform/StayAwake.h"

namespace ma {
namespace {

std::atomic<SettingsReader> settingsReader{nullptr};

utils::FlashSettings readSettings() {
  const SettingsReader reader = settingsReader.load();
  return reader != nullptr ? reader() : utils::FlashSettings();
}

// They live as long as the process: job threads may still ask while it exits.

FlashBackend& virtualBackend() {
  static FlashBackend& theBackend =
      *new VirtualFlashBackend(nativeFileSystem(), adaptersDirectory, platform::steadyClock());
  return theBackend;
}

std::vector<FlashBackend*> backends() {
  if (areAdaptersChosen()) {
    return {&virtualBackend()};
  }
  const utils::FlashSettings settings = readSettings();
  std::vector<FlashBackend*> members;
  FlashBackend* const kernel = kernelBackend(readSettings);
  if (kernel != nullptr && settings.hasKernelAdapters) {
    members.push_back(kernel);
  }
  if (settings.hasVirtualAdapters || members.empty()) {
    members.push_back(&virtualBackend());
  }
  return members;
}

BackendSet& backend() {
  static BackendSet& theBackend = *new BackendSet(backends);
  return theBackend;
}

WriteProgressTable& progressTable() {
  static WriteProgressTable& theTable = *new WriteProgressTable;
  return theTable;
}

PortId needPort(const std::string& adapter) {
  const auto port = parseCanonicalPortId(adapter);
  if (!port) {
    throw FlashFault(FlashError::UnknownAdapter,
                     "\"" + adapter + "\" is no port identifier like \"0000:03:00.0\"");
  }
  return *port;
}

// Runs an operation that reports by code and text.
template <class Operation>
bool report(std::uint32_t& errorCode, std::string& errorText, Operation operation) {
  try {
    operation();
  } catch (const FlashFault& fault) {
    errorCode = fault.code();
    errorText = fault.what();
    return false;
  }
  errorCode = static_cast<std::uint32_t>(FlashError::None);
  errorText.clear();
  return true;
}

bool beginUpdate(const std::string& adapter) {
  try {
    return backend().beginUpdate(needPort(adapter).adapter);
  } catch (const FlashFault&) {
    return false;
  }
}

bool isFirmware(ConstBytes file) {
  const FirmwareFormat format = firmwareFormatOf(file);
  return format == FirmwareFormat::OptionRom ? parseRomChain(file).isValid()
                                             : format != FirmwareFormat::Unknown;
}

enum class Purpose { Question, Write };

// As FlashBackend::prepare, for whatever adapter is named: the file is looked at first, whatever
// the name is.
Preparation prepare(const std::string& adapter, ConstBytes file, std::span<std::uint8_t> buffer,
                    const std::vector<utils::FirmwareType>& types, Purpose purpose) {
  try {
    const auto port = parseCanonicalPortId(adapter);
    if (!port || !backend().hasAdapter(port->adapter)) {
      return {isFirmware(file) ? PrepareStatus::InternalFault : PrepareStatus::InvalidImage};
    }
    if (purpose == Purpose::Write) {
      backend().awaitAnswer(port->adapter);
    }
    return backend().prepare(*port, file, buffer, types);
  } catch (const FlashFault& fault) {
    return {PrepareStatus::InternalFault, 0, fault.what()};
  }
}

}  // namespace

void useSettings(SettingsReader reader) {
  settingsReader.store(reader);
}

std::vector<AdapterKind> adapterKinds() {
  std::vector<AdapterKind> kinds;
  for (const FlashBackend* member : backends()) {
    kinds.push_back(member == &virtualBackend() ? AdapterKind::Virtual : AdapterKind::Kernel);
  }
  return kinds;
}

utils::StringArray enumerateAdapters() {
  try {
    return backend().enumerateAdapters();
  } catch (const FlashFault&) {
    return {};
  }
}

AdapterList listAdapters() {
  return backend().list();
}

std::vector<AdapterListing> outlineAdapters(OutlineDepth depth) {
  try {
    return backend().outline(depth).adapters;
  } catch (const FlashFault&) {
    return {};
  }
}

std::vector<std::string> findAdapterProblems() {
  return backend().problems();
}

std::vector<FirmwareVersions> getFirmwareVersions(const std::string& adapter) {
  try {
    return backend().firmwareVersions(needPort(adapter));
  } catch (const FlashFault&) {
    return {};
  }
}

void getAdapterFirmwareVersion(const std::string& adapter,
                               std::vector<utils::FirmwareVersionInfo>& versions) {
  versions.clear();
  try {
    versions = backend().installedFirmware(needPort(adapter));
  } catch (const FlashFault&) {
    return;
  }
}

utils::PCIAddr getPCIAddress(const std::string& adapter) {
  const auto port = parseCanonicalPortId(adapter);
  return port ? utils::PCIAddr{port->adapter.bus, port->adapter.device, port->function}
              : utils::PCIAddr{};
}

bool isSameAdapter(const std::string& one, const std::string& other) {
  const auto port = parseCanonicalPortId(one);
  const auto otherPort = parseCanonicalPortId(other);
  return port && otherPort && port->adapter == otherPort->adapter;
}

bool getCanBeUpdated(const std::string& adapter) {
  try {
    return backend().isUpdatable(needPort(adapter));
  } catch (const FlashFault&) {
    return false;
  }
}

FlashUpdate::FlashUpdate(const std::string& adapter)
    : m_adapter(adapter), m_hasBegun(beginUpdate(adapter)) {}

FlashUpdate::~FlashUpdate() {
  if (const auto port = parseCanonicalPortId(m_adapter); port && m_hasBegun) {
    backend().endUpdate(port->adapter);
  }
}

bool setBootType(const std::string& adapter, BootType bootType, std::string& errorText) {
  if (bootType > BootType::Uefi) {
    errorText = std::to_string(static_cast<std::uint32_t>(bootType)) + " is no boot type";
    return false;
  }
  std::uint32_t errorCode = 0;
  return report(errorCode, errorText, [&] { backend().setBootType(needPort(adapter), bootType); });
}

bool setBootType(const std::string& adapter, BootType bootType) {
  std::string ignored;
  return setBootType(adapter, bootType, ignored);
}

PrepareStatus prepareFlashImage(const std::string& adapter, const std::uint8_t* file,
                                std::uint32_t fileSize, std::uint8_t* image,
                                std::uint32_t& imageSize,
                                const std::vector<utils::FirmwareType>& types) {
  const std::span<std::uint8_t> buffer(image, imageSize);
  const Preparation preparation = prepare(adapter, {file, fileSize}, buffer, types, Purpose::Write);
  imageSize = preparation.filled;
  const PrepareStatus status = preparation.status;
  if (status == PrepareStatus::Ok || status == PrepareStatus::Downgrade ||
      status == PrepareStatus::TypesDiffer) {
    // Whoever prepares goes on to write, and watches from now on.
    static_cast<void>(progressTable().start(needPort(adapter).adapter));
  }
  return status;
}

std::string explainFlashImage(const std::string& adapter, const std::uint8_t* file,
                              std::uint32_t fileSize,
                              const std::vector<utils::FirmwareType>& types) {
  FileBytes scratch(fileSize);
  return prepare(adapter, {file, fileSize}, scratch.writable(), types, Purpose::Question).reason;
}

ImageComparison compareFlashImage(const std::string& adapter, const std::uint8_t* file,
                                  std::uint32_t fileSize) {
  try {
    if (!parseCanonicalPortId(adapter) && !isFirmware({file, fileSize})) {
      return ImageComparison::NotForAdapter;
    }
    return backend().compare(needPort(adapter), {file, fileSize});
  } catch (const FlashFault&) {
    return ImageComparison::Unknown;
  }
}

std::uint64_t digestAdapter(const std::string& adapter) {
  try {
    return backend().digest(needPort(adapter));
  } catch (const FlashFault&) {
    return 0;
  }
}

bool writeFlashImage(const std::string& adapter, const std::uint8_t* image, std::uint32_t imageSize,
                     std::uint32_t& errorCode, std::string& errorText) {
  return report(errorCode, errorText, [&] {
    const PortId port = needPort(adapter);
    if (imageSize == 0) {
      backend().awaitAnswer(port.adapter);
      if (!backend().isUpdatable(port)) {
        throw FlashFault(FlashError::NotUpdatable, adapter);
      }
      throw FlashFault(FlashError::EmptyImage, adapter + " keeps what it holds");
    }
    const platform::StayAwake awake;
    backend().writeFlash(port, {image, imageSize}, progressTable().start(port.adapter));
  });
}

std::uint32_t getFlashImageUpdateProgress(const std::string& adapter) {
  const auto port = parseCanonicalPortId(adapter);
  return port ? progressTable().percent(port->adapter) : 0;
}

std::string getFlashImageUpdateRemark(const std::string& adapter) {
  const auto port = parseCanonicalPortId(adapter);
  return port ? progressTable().remark(port->adapter) : "";
}

bool updateCapabilityWord(const std::string& adapter, std::vector<utils::FirmwareType> types,
                          std::uint32_t& errorCode, std::string& errorText) {
  return report(errorCode, errorText, [&] {
    const PortId port = needPort(adapter);
    // In a FlashUpdate, the new image takes its place now.
    const platform::StayAwake awake;
    backend().recordInstalled(port, types);
  });
}

bool activateFirmware(const std::string& adapter, Activation& activation, std::string& errorText) {
  std::uint32_t errorCode = 0;
  return report(errorCode, errorText, [&] {
    const auto address = parseAdapterAddress(adapter);
    if (!address) {
      throw FlashFault(FlashError::UnknownAdapter,
                       "\"" + adapter + "\" is no adapter address like \"0000:03:00\"");
    }
    activation = backend().activate(*address);
  });
}

}  // namespace ma
