#include "Os/Windows/WindowsRegistry.h"

#include <array>
#include <cstring>
#include <windows.h>

#include "Utils/Log.h"
#include "platform/Texts.h"

namespace utils {

template <>
Singleton<WindowsRegistry>*& Singleton<WindowsRegistry>::slot() {
  static Singleton* current = nullptr;
  return current;
}

namespace {

constexpr LogSource kLog{"Os/Windows/Windows"};
constexpr const char* kGetRegistryData = "utils::WindowsRegistry::getRegistryData";
constexpr std::size_t kMaxData = WindowsRegistry::kMaxValueSize;
constexpr std::size_t kBytesOfUnit = 4;

HKEY toHkey(WindowsRegistry::Hive hive) {
  return reinterpret_cast<HKEY>(hive);
}

// A key that the registry opened, if it did; closed at the end of its scope.
class Key {
 public:
  Key(WindowsRegistry& registry, WindowsRegistry::Handle handle)
      : m_registry(registry), m_handle(handle) {}
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  ~Key() {
    if (isOpen()) {
      m_registry.closeKey(m_handle);
    }
  }

  [[nodiscard]] bool isOpen() const { return m_handle != nullptr; }
  [[nodiscard]] HKEY handle() const { return static_cast<HKEY>(m_handle); }

 private:
  WindowsRegistry& m_registry;
  WindowsRegistry::Handle m_handle;
};

Key openToRead(WindowsRegistry& registry, WindowsRegistry::Hive hive, const std::string& path) {
  WindowsRegistry::Handle key = nullptr;
  return {registry, registry.openKey(hive, path, KEY_READ, key) ? key : nullptr};
}

Key createToWrite(WindowsRegistry& registry, WindowsRegistry::Hive hive, const std::string& path) {
  HKEY key = nullptr;
  const bool isCreated =
      RegCreateKeyExA(toHkey(hive), path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_WRITE,
                      nullptr, &key, nullptr) == ERROR_SUCCESS;
  return {registry, isCreated ? key : nullptr};
}

struct RegistryData {
  DWORD type = REG_NONE;
  std::array<BYTE, kMaxData> bytes{};
  DWORD size = kMaxData;
};

// Reads a value, and returns whether it is of the type.
bool query(WindowsRegistry& registry, WindowsRegistry::Hive hive, const std::string& path,
           WindowsRegistry::ValueType type, const std::string& name, RegistryData& data) {
  logDebug(kLog, kGetRegistryData, "Opennig key %s (%s)", path.c_str(), name.c_str());
  const Key key = openToRead(registry, hive, path);
  if (!key.isOpen()) {
    return false;
  }
  if (RegQueryValueExA(key.handle(), name.c_str(), nullptr, &data.type, data.bytes.data(),
                       &data.size) != ERROR_SUCCESS) {
    logDebug(kLog, kGetRegistryData, "%s Registry Entry does not exist", name.c_str());
    return false;
  }
  return data.type == type;
}

// The names that an enumeration function of the registry gives for 0, 1, 2, ... `longest` counts
// UTF-16 units; in a code page of several bytes for a character, up to kBytesOfUnit stand for one.
// What somebody removes meanwhile is left out.
template <class Enumerate>
std::vector<std::string> collect(DWORD count, DWORD longest, Enumerate enumerate) {
  std::vector<std::string> names;
  std::string buffer(std::size_t{longest} * kBytesOfUnit + 1, '\0');
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
  static_cast<void>(RegCloseKey(static_cast<HKEY>(key)));  // what was read or written stands
}

bool WindowsRegistry::getRegistryData(Hive hive, const std::string& path, ValueType type,
                                      const std::string& name, std::uint32_t& number) {
  number = 0;
  RegistryData data;
  if (!query(*this, hive, path, type, name, data) || type != REG_DWORD ||
      data.size != sizeof number) {
    return false;
  }
  std::memcpy(&number, data.bytes.data(), sizeof number);
  return true;
}

bool WindowsRegistry::getRegistryData(Hive hive, const std::string& path, ValueType type,
                                      const std::string& name, std::string& text) {
  text.clear();
  RegistryData data;
  if (!query(*this, hive, path, type, name, data) || type != REG_SZ) {
    return false;
  }
  // The stored text need not be ended.
  const auto* characters = reinterpret_cast<const char*>(data.bytes.data());
  text.assign(characters, strnlen(characters, data.size));
  return true;
}

std::optional<WindowsRegistry::ValueFacts> WindowsRegistry::findValue(Hive hive,
                                                                      const std::string& path,
                                                                      const std::string& name) {
  const Key key = openToRead(*this, hive, path);
  DWORD type = REG_NONE;
  DWORD size = 0;
  DWORD storedSize = 0;
  if (!key.isOpen() ||
      RegQueryValueExA(key.handle(), name.c_str(), nullptr, &type, nullptr, &size) !=
          ERROR_SUCCESS ||
      RegQueryValueExW(key.handle(), platform::toPath(name).c_str(), nullptr, nullptr, nullptr,
                       &storedSize) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  return ValueFacts{type, size, storedSize};
}

bool WindowsRegistry::createTextValue(Hive hive, const std::string& path, const std::string& name,
                                      const std::string& text) {
  logDebug(kLog, "utils::WindowsRegistry::createTextValue",
           "Creating REG_SZ registry key '%X\\%s' with value '%s'", static_cast<unsigned>(hive),
           path.c_str(), text.c_str());
  const Key key = createToWrite(*this, hive, path);
  const auto* bytes = reinterpret_cast<const BYTE*>(text.c_str());
  return key.isOpen() && RegSetValueExA(key.handle(), name.c_str(), 0, REG_SZ, bytes,
                                        static_cast<DWORD>(text.size() + 1)) == ERROR_SUCCESS;
}

bool WindowsRegistry::deleteKey(Hive hive, const std::string& path) {
  return RegDeleteKeyA(toHkey(hive), path.c_str()) == ERROR_SUCCESS;
}

std::vector<std::string> WindowsRegistry::enumerateKeys(Hive hive, const std::string& path) {
  const Key key = openToRead(*this, hive, path);
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
  const Key key = openToRead(*this, hive, path);
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
