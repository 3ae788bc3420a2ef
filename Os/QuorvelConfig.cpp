#include "Os/QuorvelConfig.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

#include "Os/Files.h"
#include "Os/SettingsStore.h"
#include "Utils/Conversions.h"
#include "Utils/Lasting.h"
#include "Utils/Log.h"
#include "Utils/RefusalTexts.h"

namespace utils {
namespace {

constexpr const LogSource& kLog = SettingsStore::kConfigLog;
constexpr const char* kInitialize = "utils::QuorvelConfig::initialize";

constexpr const char* kQuorvelKey = "Quorvel";
constexpr const char* kRavlKey = "RAVL";
constexpr SettingName kTimeout{kQuorvelKey, "Timeout", true};
constexpr SettingName kNamespace{kQuorvelKey, "Namespace"};
constexpr SettingName kOemCustomizeable{kRavlKey, "OEMCustomizeable", true};
constexpr SettingName kFirmwarePaths{kQuorvelKey, "FWFilePath"};
constexpr SettingName kMaxImageSize{kQuorvelKey, "MaxImageSize", true};
constexpr SettingName kAdapters{kQuorvelKey, "Adapters"};
constexpr SettingName kTrustDriverCheck{kQuorvelKey, "TrustDriverCheck"};
constexpr SettingName kFirmwareFolder{kQuorvelKey, "FirmwareFolder"};
constexpr SettingName kKnownSettings[] = {kTimeout,          kNamespace,     kOemCustomizeable,
                                          kFirmwarePaths,    kMaxImageSize,  kAdapters,
                                          kTrustDriverCheck, kFirmwareFolder};

// Drivers are named as the kernel's modules are.
constexpr const char* kSignsOfDrivers =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-";

constexpr const char* kNamespaceRoot = "root";
constexpr std::uint32_t kDefaultTimeout = 300'000;  // milliseconds
constexpr std::uint32_t kDowngradeEnableBit = 0x20;
constexpr std::size_t kShortestPath = 2;
constexpr std::uint32_t kLargestFile = std::numeric_limits<std::int32_t>::max();  // see Os/Files.h

std::vector<std::string> readWords(const SettingsStore& store, const SettingName& setting) {
  std::string text;
  static_cast<void>(store.read(setting, text));
  std::vector<std::string> words = split(text, ' ', kNoQuote);
  std::erase(words, "");
  return words;
}

// Returns why what is written there cannot be used; then `settings` stays as it is.
std::string readAdapterKinds(const SettingsStore& store, FlashSettings& settings) {
  std::string text;
  if (!store.read(kAdapters, text)) {
    return {};
  }
  FlashSettings read;
  read.hasKernelAdapters = read.hasVirtualAdapters = false;
  for (const std::string& kind : readWords(store, kAdapters)) {
    if (kind == "kernel") {
      read.hasKernelAdapters = true;
    } else if (kind == "virtual") {
      read.hasVirtualAdapters = true;
    } else {
      return store.placeOf(kAdapters) + ": Adapters is ignored: '" + kind +
             "' is neither kernel nor virtual";
    }
  }
  if (!read.hasKernelAdapters && !read.hasVirtualAdapters) {
    return store.placeOf(kAdapters) + ": Adapters is ignored: it names neither kernel nor virtual";
  }
  settings.hasKernelAdapters = read.hasKernelAdapters;
  settings.hasVirtualAdapters = read.hasVirtualAdapters;
  return {};
}

// Returns the words that cannot be used; the others go into `settings`.
std::string readTrustedDrivers(const SettingsStore& store, FlashSettings& settings) {
  std::string unusable;
  for (std::string& word : readWords(store, kTrustDriverCheck)) {
    if (word.find_first_not_of(kSignsOfDrivers) == std::string::npos) {
      settings.trustedDrivers.push_back(std::move(word));
    } else {
      unusable += (unusable.empty() ? "'" : ", '") + word + "'";
    }
  }
  return unusable.empty()
             ? unusable
             : store.placeOf(kTrustDriverCheck) + ": of TrustDriverCheck is ignored: " + unusable +
                   "; drivers are named as modules of the kernel, with blanks between them";
}

std::string readFirmwareFolder(const SettingsStore& store, FlashSettings& settings) {
  std::string folder;
  if (!store.read(kFirmwareFolder, folder)) {
    return {};
  }
  if (!folder.starts_with('/')) {
    return store.placeOf(kFirmwareFolder) + ": FirmwareFolder is ignored: '" + folder +
           "' does not begin with /";
  }
  settings.firmwareFolder = std::move(folder);
  return {};
}

}  // namespace

template <>
Singleton<QuorvelConfig>*& Singleton<QuorvelConfig>::slot() {
  static Singleton* current = [] {
    // Then it is the one that was made on first use: any other has an owner, who is gone.
    destroyAtUnload([] { delete slot(); });
    return nullptr;
  }();
  return current;
}

QuorvelConfig::QuorvelConfig(const std::string& path)
    : m_path(path), m_namespace(kDefaultNamespace), m_timeout(kDefaultTimeout) {}

QuorvelConfig::~QuorvelConfig() = default;

std::string QuorvelConfig::placeOf(const std::string& path) {
  return SettingsStore::placeOf(path, kQuorvelKey);
}

std::string QuorvelConfig::getNamespace() {
  initialize();
  const ScopedLock lock(m_lock);
  return m_namespace;
}

std::uint32_t QuorvelConfig::getTimeout() {
  initialize();
  const ScopedLock lock(m_lock);
  return m_timeout;
}

bool QuorvelConfig::getDowngradeEnable() {
  initialize();
  const ScopedLock lock(m_lock);
  return m_isDowngradeEnabled;
}

std::vector<std::string> QuorvelConfig::getFWFilePaths() {
  initialize();
  const ScopedLock lock(m_lock);
  return m_firmwarePaths;
}

void QuorvelConfig::initialize() {
  logDebug(kLog, kInitialize, "Trying to read register ...");
  std::uint64_t number = 0;
  {
    const ScopedLock lock(m_lock);
    number = ++m_lastBegun;
  }
  try {
    takeOver(number, readSettings());
  } catch (...) {
    logDebug(kLog, kInitialize, "Reading config values from register - failed");
  }
}

std::uint32_t QuorvelConfig::getMaxImageSize() {
  const SettingsStore store(m_path);
  std::uint32_t size = kDefaultMaxImageSize;
  static_cast<void>(store.read(kMaxImageSize, size));
  std::string problem;
  if (size == 0 || size > kLargestFile) {
    problem = store.placeOf(kMaxImageSize) + ": MaxImageSize is ignored: " + std::to_string(size) +
              " is no number from 1 to " + std::to_string(kLargestFile);
    size = kDefaultMaxImageSize;
  }
  const ScopedLock lock(m_lock);
  reportOnce("utils::QuorvelConfig::getMaxImageSize", problem, m_reportedMaxImageSize);
  return size;
}

FlashSettings QuorvelConfig::getFlashSettings() {
  const SettingsStore store(m_path);
  FlashSettings settings;
  const std::string drivers = readTrustedDrivers(store, settings);
  const std::string kinds = readAdapterKinds(store, settings);
  const std::string folder = readFirmwareFolder(store, settings);
  constexpr const char* kFunction = "utils::QuorvelConfig::getFlashSettings";
  const ScopedLock lock(m_lock);
  reportOnce(kFunction, drivers, m_reportedTrustDriverCheck);
  reportOnce(kFunction, kinds, m_reportedAdapters);
  reportOnce(kFunction, folder, m_reportedFirmwareFolder);
  return settings;
}

FlashSettings QuorvelConfig::currentFlashSettings() {
  return getInstance()->getFlashSettings();
}

void QuorvelConfig::reportOnce(const char* function, const std::string& problem,
                               std::string& reported) {
  if (problem == reported) {
    return;
  }
  reported = problem;
  if (!problem.empty()) {
    logError(kLog, function, "%s", problem.c_str());
  }
}

void QuorvelConfig::askFirmwarePaths() const {
  std::string paths;
  if (!SettingsStore(m_path).read(kFirmwarePaths, paths)) {
    return;
  }
  for (std::string path : split(paths, ';', kNoQuote)) {
    if (path.size() < kShortestPath) {
      continue;
    }
    if (path.ends_with('\\')) {
      path.pop_back();
    }
    static_cast<void>(os::isThisADir(path));
  }
}

std::string QuorvelConfig::findSizeExcess(std::uint64_t size) {
  const std::uint32_t limit = getMaxImageSize();
  return size <= limit ? ""
                       : "its " + std::to_string(size) + " bytes are " + refusal::kImageTooLarge +
                             " (" + std::to_string(limit) + " in " + placeOf(m_path) + ")";
}

QuorvelConfig::Reading QuorvelConfig::readSettings() const {
  const SettingsStore store(m_path);
  Reading reading;

  std::uint32_t timeout = 0;
  if (!store.read(kTimeout, timeout)) {
    logDebug(kLog, kInitialize, "Getting TimeOut from register - failed");
  } else if (timeout != 0) {
    reading.timeout = timeout;
  } else {
    reading.problems.insert(store.placeOf(kTimeout) + ": Timeout is ignored: it must not be 0");
  }

  std::string name;
  if (!store.read(kNamespace, name)) {
    logDebug(kLog, kInitialize, "Getting Namespace from register - failed");
  } else if (name.starts_with(kNamespaceRoot)) {
    reading.nameSpace = name;
  } else {
    reading.problems.insert(store.placeOf(kNamespace) + ": Namespace is ignored: '" + name +
                            "' does not begin with " + kNamespaceRoot);
  }

  std::uint32_t customisation = 0;
  if (!store.read(kOemCustomizeable, customisation)) {
    logDebug(kLog, kInitialize, "Getting LogLevel from register - failed");
  } else {
    reading.isDowngradeEnabled = (customisation & kDowngradeEnableBit) != 0;
  }

  std::string paths;
  if (!store.read(kFirmwarePaths, paths)) {
    logDebug(kLog, kInitialize, "Getting Firmware File Paths from register - failed");
  } else {
    logDebug(kLog, kInitialize, "Getting Firmware File Paths from: %s", paths.c_str());
    readFirmwarePaths(paths, store.placeOf(kFirmwarePaths), reading);
  }
  for (std::string& problem : store.findProblems(kKnownSettings)) {
    reading.problems.insert(std::move(problem));
  }
  return reading;
}

void QuorvelConfig::readFirmwarePaths(const std::string& text, const std::string& place,
                                      Reading& reading) {
  const auto ignore = [&](const std::string& path, const char* reason) {
    reading.problems.insert(
        format("%s: FWFilePath: '%s' is ignored: %s", place.c_str(), path.c_str(), reason));
  };
  for (std::string path : split(text, ';', kNoQuote)) {
    logDebug(kLog, kInitialize, "Candidate path : %s", path.c_str());
    if (path.size() < kShortestPath) {
      logDebug(kLog, kInitialize, "Path %s is too short", path.c_str());
      if (!path.empty()) {
        ignore(path, "it is too short; write it with a directory before it");
      }
      continue;
    }
    if (path.ends_with('\\')) {
      logDebug(kLog, kInitialize, "Removing last backslash");
      path.pop_back();
    }
    if (os::isThisADir(path)) {
      logDebug(kLog, kInitialize, "Read next FWFilePath : %s", path.c_str());
      reading.firmwarePaths.push_back(path);
    } else {
      ignore(path, "there is no such directory, or it does not answer");
    }
  }
}

void QuorvelConfig::takeOver(std::uint64_t number, Reading reading) {
  std::vector<std::string> news;
  {
    const ScopedLock lock(m_lock);
    if (number < m_lastTaken) {
      return;
    }
    std::set_difference(reading.problems.begin(), reading.problems.end(), m_reported.begin(),
                        m_reported.end(), std::back_inserter(news));
    // Nothing fails from here on: a reading is taken whole or not at all.
    m_lastTaken = number;
    m_timeout = reading.timeout.value_or(m_timeout);
    if (reading.nameSpace) {
      m_namespace = std::move(*reading.nameSpace);
    }
    m_isDowngradeEnabled = reading.isDowngradeEnabled.value_or(m_isDowngradeEnabled);
    m_firmwarePaths = std::move(reading.firmwarePaths);
    m_reported = std::move(reading.problems);
  }
  for (const std::string& problem : news) {
    logError(kLog, "utils::QuorvelConfig::takeOver", "%s", problem.c_str());
  }
}

}  // namespace utils
