// The registry, as the configuration reads it on Windows. Any thread may call.

#ifndef ORVEX_OS_WINDOWS_WINDOWSREGISTRY_H_
#define ORVEX_OS_WINDOWS_WINDOWSREGISTRY_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Utils/Export.h"
#include "Utils/Singleton.h"

namespace utils {

class WindowsRegistry;
template <>
ORVEX_CORE_API Singleton<WindowsRegistry>*& Singleton<WindowsRegistry>::slot();

class ORVEX_CORE_API WindowsRegistry : public AutoSingleton<WindowsRegistry> {
 public:
  static constexpr const char* kTypeName = "utils::WindowsRegistry";

  using Handle = void*;             // HKEY
  using Hive = std::uintptr_t;      // a predefined HKEY, for example HKEY_LOCAL_MACHINE
  using ValueType = std::uint32_t;  // for example REG_DWORD

  // Opens a key. Returns false when it cannot be opened with that access (for example KEY_READ).
  [[nodiscard]] bool openKey(Hive hive, const std::string& path, std::uint32_t access, Handle& key);
  void closeKey(Handle key);

  // Read a value of the type: REG_DWORD for a number, REG_SZ for a text; there is none of any
  // other. Return false, and empty the output, when the key or the value is missing, the value is
  // of another type or longer than 256 bytes.
  [[nodiscard]] bool getRegistryData(Hive hive, const std::string& path, ValueType type,
                                     const std::string& name, std::uint32_t& number);
  [[nodiscard]] bool getRegistryData(Hive hive, const std::string& path, ValueType type,
                                     const std::string& name, std::string& text);

  // What is known of a value before it is read.
  struct ValueFacts {
    ValueType type = 0;
    std::size_t size = 0;        // bytes, as it is read
    std::size_t storedSize = 0;  // bytes: a text is stored with two or more for a character
  };

  // The most bytes of a value that is read.
  static constexpr std::size_t kMaxValueSize = 256;

  // Returns what kind of value there is, whatever that is; nothing where there is none. Logs
  // nothing.
  [[nodiscard]] std::optional<ValueFacts> findValue(Hive hive, const std::string& path,
                                                    const std::string& name);

  // Creates a REG_SZ value, and its key where that is missing.
  [[nodiscard]] bool createTextValue(Hive hive, const std::string& path, const std::string& name,
                                     const std::string& text);
  [[nodiscard]] bool deleteKey(Hive hive, const std::string& path);
  // Return the names under a key; none when it cannot be opened.
  [[nodiscard]] std::vector<std::string> enumerateKeys(Hive hive, const std::string& path);
  [[nodiscard]] std::vector<std::string> enumerateValues(Hive hive, const std::string& path);
};

}  // namespace utils

#endif  // ORVEX_OS_WINDOWS_WINDOWSREGISTRY_H_
