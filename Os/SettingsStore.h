// Where QuorvelConfig reads its settings from. Defined per platform.
//
// POSIX: a file of "name = value" lines with '#' comments, read afresh by every store. Blanks round
// names and values do not count; of several lines with one name the last holds; a line without '='
// is logged and skipped. Windows: the registry, under "SOFTWARE\ZOLAN\Network_Services\" and the
// key.

#ifndef ORVEX_OS_SETTINGSSTORE_H_
#define ORVEX_OS_SETTINGSSTORE_H_

#include <cstdint>
#include <map>
#include <string>

#include "Utils/Export.h"
#include "Utils/Log.h"

namespace utils {

struct SettingName {
  const char* key;   // the registry key
  const char* name;  // the value under it
};

class ORVEX_CORE_API SettingsStore {
 public:
  // The name that a configuration over this platform's store logs under.
  static const LogSource kConfigLog;

  explicit SettingsStore(const std::string& path);

  // Returns what a person calls the place of a key's settings: `path`, or the registry key.
  [[nodiscard]] static std::string placeOf(const std::string& path, const char* key);

  // Return false, and leave `value` alone, when the setting is missing or not of the type.
  [[nodiscard]] bool read(const SettingName& setting, std::uint32_t& value) const;
  [[nodiscard]] bool read(const SettingName& setting, std::string& value) const;

 private:
  std::map<std::string, std::string> m_values;
};

}  // namespace utils

#endif  // ORVEX_OS_SETTINGSSTORE_H_
