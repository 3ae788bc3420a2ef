#include "Os/QuorvelConfig.h"

#include "Os/Files.h"
#include "Os/SettingsStore.h"
#include "Utils/Conversions.h"
#include "Utils/Log.h"

namespace utils {
namespace {

constexpr const LogSource& kLog = SettingsStore::kConfigLog;
constexpr const char* kInitialize = "utils::QuorvelConfig::initialize";

constexpr const char* kQuorvelKey = "Quorvel";
constexpr const char* kRavlKey = "RAVL";
constexpr SettingName kTimeout{kQuorvelKey, "Timeout"};
constexpr SettingName kNamespace{kQuorvelKey, "Namespace"};
constexpr SettingName kOemCustomizeable{kRavlKey, "OEMCustomizeable"};
constexpr SettingName kFirmwarePaths{kQuorvelKey, "FWFilePath"};

constexpr const char* kNamespaceRoot = "root";
constexpr std::uint32_t kDefaultTimeout = 300'000;  // milliseconds
constexpr std::uint32_t kDowngradeEnableBit = 0x20;
constexpr std::size_t kShortestPath = 2;

}  // namespace

template <>
Singleton<QuorvelConfig>*& Singleton<QuorvelConfig>::slot() {
  static Singleton* current = nullptr;
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
  const ScopedLock lock(m_lock);
  try {
    readSettings();
  } catch (...) {
    logDebug(kLog, kInitialize, "Reading config values from register - failed");
  }
}

void QuorvelConfig::readSettings() {
  const SettingsStore store(m_path);

  std::uint32_t timeout = 0;
  if (!store.read(kTimeout, timeout)) {
    logDebug(kLog, kInitialize, "Getting TimeOut from register - failed");
  } else if (timeout != 0) {
    m_timeout = timeout;
  }

  std::string name;
  if (!store.read(kNamespace, name)) {
    logDebug(kLog, kInitialize, "Getting Namespace from register - failed");
  } else if (name.starts_with(kNamespaceRoot)) {
    m_namespace = name;
  }

  std::uint32_t customisation = 0;
  if (!store.read(kOemCustomizeable, customisation)) {
    logDebug(kLog, kInitialize, "Getting LogLevel from register - failed");
  } else {
    m_isDowngradeEnabled = (customisation & kDowngradeEnableBit) != 0;
  }

  m_firmwarePaths.clear();
  std::string paths;
  if (!store.read(kFirmwarePaths, paths)) {
    logDebug(kLog, kInitialize, "Getting Firmware File Paths from register - failed");
  } else {
    logDebug(kLog, kInitialize, "Getting Firmware File Paths from: %s", paths.c_str());
    readFirmwarePaths(paths);
  }
}

void QuorvelConfig::readFirmwarePaths(const std::string& text) {
  for (std::string path : split(text, ';', kNoQuote)) {
    logDebug(kLog, kInitialize, "Candidate path : %s", path.c_str());
    if (path.size() < kShortestPath) {
      logDebug(kLog, kInitialize, "Path %s is too short", path.c_str());
      continue;
    }
    if (path.ends_with('\\')) {
      logDebug(kLog, kInitialize, "Removing last backslash");
      path.pop_back();
    }
    if (os::isThisADir(path)) {
      logDebug(kLog, kInitialize, "Read next FWFilePath : %s", path.c_str());
      m_firmwarePaths.push_back(path);
    }
  }
}

}  // namespace utils
