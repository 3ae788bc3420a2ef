// Where QuorvelConfig reads its settings from. Defined per platform.
//
// POSIX: a file of "name = value" lines with '#' comments, read afresh by every store. Blanks round
// names and values do not count; of several lines with one name the last holds; a line without '='
// is logged and skipped. A value may stand in double quotes: then '#' and blanks belong to it, and
// a double quote inside it stands behind a backslash. Numbers are decimal without leading zeros or
// hexadecimal behind 0x, below 2^32. Windows: the registry, under
// "SOFTWARE\ZOLAN\Network_Services\" and the key.

#ifndef ORVEX_OS_SETTINGSSTORE_H_
#define ORVEX_OS_SETTINGSSTORE_H_

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "Utils/Export.h"
#include "Utils/Log.h"

namespace utils {

struct SettingName {
  const char* key = nullptr;   // the registry key
  const char* name = nullptr;  // the value under it
  bool isNumber = false;
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

  // Returns what a person calls the place of one setting: the file with the number of its line, or
  // the registry value.
  [[nodiscard]] std::string placeOf(const SettingName& setting) const;

  // Returns what somebody should mend who wrote the settings, each with its place: lines that are
  // none, names that are not among the known ones, numbers that are none. A bounded number of them.
  // Windows: values of another type or a size that it does not have, or too long; names that are
  // not known are none, since the keys are not this program's alone.
  [[nodiscard]] std::vector<std::string> findProblems(std::span<const SettingName> known) const;

 private:
  struct Stored {
    std::string value;
    std::string place;
  };

  std::string m_path;
  std::map<std::string, Stored> m_values;
  std::vector<std::string> m_problems;  // of lines
};

}  // namespace utils

#endif  // ORVEX_OS_SETTINGSSTORE_H_
