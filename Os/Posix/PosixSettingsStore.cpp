#include <algorithm>
#include <charconv>
#include <fstream>
#include <string_view>
#include <system_error>
#include <utility>

#include "Os/SettingsStore.h"
#include "Utils/Conversions.h"
#include "Utils/Format.h"
#include "Utils/Log.h"
#include "Utils/NearestName.h"

namespace utils {
namespace {

constexpr LogSource kLog{"Os/Posix/PosixSettingsStore"};
constexpr char kComment = '#';
constexpr char kQuote = '"';

// More help nobody: the file is no configuration then.
constexpr std::size_t kMostProblems = 16;

// Returns the position of the quote that closes the one at the start.
std::size_t findClosingQuote(std::string_view text) {
  std::size_t at = text.find(kQuote, 1);
  while (at != std::string_view::npos && text[at - 1] == '\\') {
    at = text.find(kQuote, at + 1);
  }
  return at;
}

// Returns the value at the start of what stands behind '='. Where its quotes cannot be used, says
// why in `problem`; they are characters like others then.
std::string takeValue(const std::string& text, std::string& problem) {
  const std::string trimmed = trim(text);
  if (trimmed.starts_with(kQuote)) {
    const std::size_t end = findClosingQuote(trimmed);
    if (end == std::string::npos) {
      problem = "the double quote at the start of the value is not closed";
    } else {
      const std::string rest = trim(trimmed.substr(end + 1));
      if (rest.empty() || rest.starts_with(kComment)) {
        return unquote(std::string_view(trimmed).substr(0, end + 1));
      }
      problem = "'" + rest + "' stands behind the closing quote; put the whole value in quotes";
    }
  }
  return trim(trimmed.substr(0, trimmed.find(kComment)));
}

// Returns whether all of the text is digits of a number below 2^32.
bool readDigits(std::string_view text, int base, std::uint32_t& value) {
  std::uint32_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, base);
  if (error != std::errc() || stop != end) {
    return false;
  }
  value = number;
  return true;
}

// toUint takes no decimals from 2^31 on.
bool readDecimal(std::string_view text, std::uint32_t& value) {
  return (text == "0" || !text.starts_with('0')) && readDigits(text, 10, value);
}

bool isNumber(std::string_view text) {
  std::uint32_t ignored = 0;
  const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
  return isHexadecimal ? readDigits(text.substr(2), 16, ignored) : readDecimal(text, ignored);
}

std::string adviseOnName(const std::string& name, std::span<const SettingName> known) {
  std::vector<std::string> names;
  std::string all;
  for (const SettingName& setting : known) {
    names.emplace_back(setting.name);
    all += all.empty() ? "" : ", ";
    all += setting.name;
  }
  const std::string nearest = findNearestName(name, names);
  return nearest.empty() ? "the settings are " + all : "did you mean '" + nearest + "'?";
}

}  // namespace

const LogSource SettingsStore::kConfigLog{"Os/Posix/PosixQuorvelConfig"};

SettingsStore::SettingsStore(const std::string& path) : m_path(path) {
  std::ifstream file(path);
  std::string text;
  for (int number = 1; std::getline(file, text); ++number) {
    if (text.ends_with('\r')) {
      text.pop_back();
    }
    const std::string line = trim(text.substr(0, text.find(kComment)));
    if (line.empty()) {
      continue;
    }
    const std::string place = path + ":" + std::to_string(number);
    const std::size_t equals = line.find('=');
    std::string problem;
    if (equals == std::string::npos) {
      problem = "expected 'name = value', found '" + line + "'";
      logDebug(kLog, "utils::SettingsStore::SettingsStore", "%s: %s", place.c_str(),
               problem.c_str());
    } else {
      std::string value = takeValue(text.substr(text.find('=') + 1), problem);
      m_values[trim(line.substr(0, equals))] = {std::move(value), place};
    }
    if (!problem.empty() && m_problems.size() < kMostProblems) {
      m_problems.push_back(format("%s: %s", place.c_str(), problem.c_str()));
    }
  }
}

std::string SettingsStore::placeOf(const std::string& path, const char* /*key*/) {
  return path;
}

bool SettingsStore::read(const SettingName& setting, std::uint32_t& value) const {
  std::string text;
  if (!read(setting, text)) {
    return false;
  }
  text = trim(text);
  return readDecimal(text, value) || toUint(text, value);
}

bool SettingsStore::read(const SettingName& setting, std::string& value) const {
  const auto found = m_values.find(setting.name);
  if (found == m_values.end()) {
    return false;
  }
  value = found->second.value;
  return true;
}

std::string SettingsStore::placeOf(const SettingName& setting) const {
  const auto found = m_values.find(setting.name);
  return found != m_values.end() ? found->second.place : m_path;
}

std::vector<std::string> SettingsStore::findProblems(std::span<const SettingName> known) const {
  std::vector<std::string> problems = m_problems;
  for (const auto& [name, stored] : m_values) {
    if (problems.size() >= kMostProblems) {
      break;
    }
    const auto isNamed = [&name = name](const SettingName& one) { return name == one.name; };
    const auto setting = std::find_if(known.begin(), known.end(), isNamed);
    if (setting == known.end()) {
      problems.push_back(stored.place + ": there is no setting '" + name + "'; " +
                         adviseOnName(name, known));
    } else if (setting->isNumber && !isNumber(trim(stored.value))) {
      problems.push_back(stored.place + ": " + name + " is ignored: '" + stored.value +
                         "' is no number below 4294967296, decimal without leading zeros or "
                         "hexadecimal with 0x");
    }
  }
  return problems;
}

}  // namespace utils
