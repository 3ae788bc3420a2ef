#include <array>
#include <optional>
#include <windows.h>

#include "Os/SettingsStore.h"
#include "Os/Windows/WindowsRegistry.h"

namespace utils {
namespace {

constexpr const char* kRoot = "SOFTWARE\\ZOLAN\\Network_Services\\";

// Indexed by the number of the type.
constexpr std::array<const char*, 12> kTypeNames = {"REG_NONE",
                                                    "REG_SZ",
                                                    "REG_EXPAND_SZ",
                                                    "REG_BINARY",
                                                    "REG_DWORD",
                                                    "REG_DWORD_BIG_ENDIAN",
                                                    "REG_LINK",
                                                    "REG_MULTI_SZ",
                                                    "REG_RESOURCE_LIST",
                                                    "REG_FULL_RESOURCE_DESCRIPTOR",
                                                    "REG_RESOURCE_REQUIREMENTS_LIST",
                                                    "REG_QWORD"};

std::string nameOf(WindowsRegistry::ValueType type) {
  return type < kTypeNames.size() ? kTypeNames[type] : std::to_string(type);
}

WindowsRegistry::Hive machine() {
  return reinterpret_cast<WindowsRegistry::Hive>(HKEY_LOCAL_MACHINE);
}

std::optional<WindowsRegistry::ValueFacts> findValue(const SettingName& setting) {
  return WindowsRegistry::getInstance()->findValue(machine(), std::string(kRoot) + setting.key,
                                                   setting.name);
}

// Reading it would make another text of it.
bool isCut(const WindowsRegistry::ValueFacts& text) {
  return text.storedSize % sizeof(wchar_t) != 0;
}

// Returns why a value is passed over that is there, empty where it is not or is read.
std::string findDefect(const SettingName& setting) {
  const auto facts = findValue(setting);
  if (!facts) {
    return "";
  }
  const WindowsRegistry::ValueType needed = setting.isNumber ? REG_DWORD : REG_SZ;
  if (facts->type != needed) {
    return "its type is " + nameOf(facts->type) + "; write it as " + nameOf(needed);
  }
  if (setting.isNumber && facts->storedSize != sizeof(std::uint32_t)) {
    return "its type is " + nameOf(needed) + ", but it has " + std::to_string(facts->storedSize) +
           " bytes, not 4; write it as " + nameOf(needed) + " again";
  }
  if (!setting.isNumber && isCut(*facts)) {
    return "its type is " + nameOf(needed) + ", but its " + std::to_string(facts->storedSize) +
           " bytes are no whole characters; write it as " + nameOf(needed) + " again";
  }
  return facts->size > WindowsRegistry::kMaxValueSize
             ? "it has " + std::to_string(facts->size) + " bytes, more than the " +
                   std::to_string(WindowsRegistry::kMaxValueSize) + " that are read"
             : "";
}

template <class Value>
bool readValue(const SettingName& setting, WindowsRegistry::ValueType type, Value& value) {
  Value found{};
  if (!WindowsRegistry::getInstance()->getRegistryData(machine(), std::string(kRoot) + setting.key,
                                                       type, setting.name, found)) {
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
  const auto facts = findValue(setting);
  if (facts && isCut(*facts)) {
    return false;
  }
  return readValue(setting, REG_SZ, value);
}

std::string SettingsStore::placeOf(const SettingName& setting) const {
  return placeOf({}, setting.key) + "\\" + setting.name;
}

std::vector<std::string> SettingsStore::findProblems(std::span<const SettingName> known) const {
  std::vector<std::string> problems;
  for (const SettingName& setting : known) {
    if (const std::string defect = findDefect(setting); !defect.empty()) {
      problems.push_back(placeOf(setting) + ": " + setting.name + " is ignored: " + defect);
    }
  }
  return problems;
}

}  // namespace utils
