#include <windows.h>

#include "Os/SettingsStore.h"
#include "Os/Windows/WindowsRegistry.h"

namespace utils {
namespace {

constexpr const char* kRoot = "SOFTWARE\\ZOLAN\\Network_Services\\";

template <class Value>
bool readValue(const SettingName& setting, WindowsRegistry::ValueType type, Value& value) {
  const auto hive = reinterpret_cast<WindowsRegistry::Hive>(HKEY_LOCAL_MACHINE);
  Value found{};
  if (!WindowsRegistry::getInstance()->getRegistryData(hive, std::string(kRoot) + setting.key, type,
                                                       setting.name, found)) {
    return false;
  }
  value = found;
  return true;
}

}  // namespace

const LogSource SettingsStore::kConfigLog{"Os/Windows/WindowsQuorvelConfig"};

SettingsStore::SettingsStore(const std::string& /*path*/) {}

std::string SettingsStore::placeOf(const std::string& /*path*/, const char* key) {
  return std::string("HKEY_LOCAL_MACHINE\\") + kRoot + key;
}

bool SettingsStore::read(const SettingName& setting, std::uint32_t& value) const {
  return readValue(setting, REG_DWORD, value);
}

bool SettingsStore::read(const SettingName& setting, std::string& value) const {
  return readValue(setting, REG_SZ, value);
}

std::string SettingsStore::placeOf(const SettingName& setting) const {
  return placeOf({}, setting.key) + "\\" + setting.name;
}

std::vector<std::string> SettingsStore::findProblems(std::span<const SettingName> /*known*/) const {
  return {};
}

}  // namespace utils
