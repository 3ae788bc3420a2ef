#include "Os/Windows/WindowsRegistry.h"

#include <array>
#include <cstring>
#include <windows.h>

#include "Utils/Log.h"

namespace utils {

template <>
Singleton<WindowsRegistry>*& Singleton<WindowsRegistry>::slot() {
  static Singleton* current = nullptr;
  return current;
}

namespace {

constexpr LogSource kLog{"Os/Windows/Windows"};
constexpr const char* kGetRegistryData = "utils::WindowsRegistry::getRegistryData";
constexpr std::size_t kMaxData = 256;  // bytes of a value that is read

HKEY toHkey(WindowsRegistry::Hive hive) {
  return reinterpret_cast<HKEY>(hive);
}

// An open key, closed at the end of its scope.
class Key {
 public:
  Key(WindowsRegistry& registry, WindowsRegistry::Hive hive, const std::string& path,
      std::uint32_t access)
      : m_registry(registry), m_isOpen(registry.openKey(hive, path, access, m_handle)) {}
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  ~Key() {
    if (m_isOpen) {
      m_registry.closeKey(m_handle);
    }
  }

  [[nodiscard]] bool isOpen() const { return m_isOpen; }
  [[nodiscard]] HKEY handle() const { return static_cast<HKEY>(m_handle); }

 private:
  WindowsRegistry& m_registry;
  WindowsRegistry::Handle m_handle = nullptr;
  bool m_isOpen;
};

struct RegistryData {
  DWORD type = REG_NONE;
  std::array<BYTE, kMaxData> bytes{};
  DWORD size = kMaxData;
};

// Reads a value of any type.
bool query(WindowsRegistry& registry, WindowsRegistry::Hive hive, const std::string& path,
           const std::string& name, RegistryData& data) {
  logDebug(kLog, kGetRegistryData, "Opennig key %s (%s)", path.c_str(), name.c_str());
  const Key key(registry, hive, path, KEY_READ);
  if (!key.isOpen()) {
    return false;
  }
  if (RegQueryValueExA(key.handle(), name.c_str(), nullptr, &data.type, data.bytes.data(),
                       &data.size) != ERROR_SUCCESS) {
    logDebug(kLog, kGetRegistryData, "%s Registry Entry does not exist", name.c_str());
    return false;
  }
  return true;
}

// The names that an enumeration function of the registry gives for 0, 1, 2, ...
template <class Enumerate>
std::vector<std::string> collect(DWORD count, DWORD longest, Enumerate enumerate) {
  std::vector<std::string> names;
  std::string buffer(longest + 1, '\0');
  for (DWORD index = 0; index < count; ++index) {
    auto length = static_cast<DWORD>(buffer.size());
    if (enumerate(index, buffer.data(), &length) == ERROR_SUCCESS) {
      names.emplace_back(buffer.data(), length);
    }
  }
  return names;
}

}  // namespace

bool WindowsRegistry::openKey(Hive hive, const std::string& path, std::uint32_t access,
                              Handle& key) {
  HKEY opened = nullptr;
  if (RegOpenKeyExA(toHkey(hive), path.c_str(), 0, access, &opened) != ERROR_SUCCESS) {
    return false;
  }
  key = opened;
  return true;
}

void WindowsRegistry::closeKey(Handle key) {
  RegCloseKey(static_cast<HKEY>(key));
}

bool WindowsRegistry::getRegistryData(Hive hive, const std::string& path, const std::string& name,
                                      std::uint32_t& number) {
  number = 0;
  RegistryData data;
  if (!query(*this, hive, path, name, data) || data.type != REG_DWORD ||
      data.size != sizeof number) {
    return false;
  }
  std::memcpy(&number, data.bytes.data(), sizeof number);
  return true;
}

bool WindowsRegistry::getRegistryData(Hive hive, const std::string& path, const std::string& name,
                                      std::string& text) {
  text.clear();
  RegistryData data;
  if (!query(*this, hive, path, name, data) || data.type != REG_SZ) {
    return false;
  }
  // The stored text need not be ended.
  const auto* characters = reinterpret_cast<const char*>(data.bytes.data());
  text.assign(characters, strnlen(characters, data.size));
  return true;
}

bool WindowsRegistry::createTextValue(Hive hive, const std::string& path, const std::string& name,
                                      const std::string& text) {
  logDebug(kLog, "utils::WindowsRegistry::createTextValue",
           "Creating REG_SZ registry key '%X\\%s' with value '%s'", static_cast<unsigned>(hive),
           path.c_str(), text.c_str());
  HKEY key = nullptr;
  if (RegCreateKeyExA(toHkey(hive), path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_WRITE,
                      nullptr, &key, nullptr) != ERROR_SUCCESS) {
    return false;
  }
  const auto* bytes = reinterpret_cast<const BYTE*>(text.c_str());
  const LSTATUS status =
      RegSetValueExA(key, name.c_str(), 0, REG_SZ, bytes, static_cast<DWORD>(text.size() + 1));
  closeKey(key);
  return status == ERROR_SUCCESS;
}

bool WindowsRegistry::deleteKey(Hive hive, const std::string& path) {
  return RegDeleteKeyA(toHkey(hive), path.c_str()) == ERROR_SUCCESS;
}

std::vector<std::string> WindowsRegistry::enumerateKeys(Hive hive, const std::string& path) {
  const Key key(*this, hive, path, KEY_READ);
  DWORD count = 0;
  DWORD longest = 0;
  if (!key.isOpen() ||
      RegQueryInfoKeyA(key.handle(), nullptr, nullptr, nullptr, &count, &longest, nullptr, nullptr,
                       nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) {
    return {};
  }
  return collect(count, longest, [&key](DWORD index, char* name, DWORD* length) {
    return RegEnumKeyExA(key.handle(), index, name, length, nullptr, nullptr, nullptr, nullptr);
  });
}

std::vector<std::string> WindowsRegistry::enumerateValues(Hive hive, const std::string& path) {
  const Key key(*this, hive, path, KEY_READ);
  DWORD count = 0;
  DWORD longest = 0;
  if (!key.isOpen() ||
      RegQueryInfoKeyA(key.handle(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &count,
                       &longest, nullptr, nullptr, nullptr) != ERROR_SUCCESS) {
    return {};
  }
  return collect(count, longest, [&key](DWORD index, char* name, DWORD* length) {
    return RegEnumValueA(key.handle(), index, name, length, nullptr, nullptr, nullptr, nullptr);
  });
}

}  // namespace utils
