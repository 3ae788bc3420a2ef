#include <fstream>

#include "Os/SettingsStore.h"
#include "Utils/Conversions.h"
#include "Utils/Log.h"

namespace utils {
namespace {

constexpr LogSource kLog{"Os/Posix/PosixSettingsStore"};
constexpr char kComment = '#';

}  // namespace

const LogSource SettingsStore::kConfigLog{"Os/Posix/PosixQuorvelConfig"};

SettingsStore::SettingsStore(const std::string& path) {
  std::ifstream file(path);
  std::string line;
  for (int number = 1; std::getline(file, line); ++number) {
    if (line.ends_with('\r')) {
      line.pop_back();
    }
    line = trim(line.substr(0, line.find(kComment)));
    if (line.empty()) {
      continue;
    }
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos) {
      logDebug(kLog, "utils::SettingsStore::SettingsStore",
               "%s:%d: expected 'name = value', found '%s'", path.c_str(), number, line.c_str());
      continue;
    }
    m_values[trim(line.substr(0, equals))] = trim(line.substr(equals + 1));
  }
}

std::string SettingsStore::placeOf(const std::string& path, const char* /*key*/) {
  return path;
}

bool SettingsStore::read(const SettingName& setting, std::uint32_t& value) const {
  std::string text;
  return read(setting, text) && toUint(text, value);
}

bool SettingsStore::read(const SettingName& setting, std::string& value) const {
  const auto found = m_values.find(setting.name);
  if (found == m_values.end()) {
    return false;
  }
  value = found->second;
  return true;
}

}  // namespace utils
