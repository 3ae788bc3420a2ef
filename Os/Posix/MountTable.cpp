#include "Os/Posix/MountTable.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>

namespace os {
namespace {

constexpr std::size_t kDevice = 2;
constexpr std::size_t kDirectory = 4;
constexpr std::size_t kFields = 5;  // that are needed

std::string_view takeUpTo(std::string_view& text, char end) {
  const std::string_view taken = text.substr(0, text.find(end));
  text.remove_prefix(std::min(taken.size() + 1, text.size()));
  return taken;
}

bool isOctal(std::string_view digits) {
  return digits.size() == 3 && digits.find_first_not_of("01234567") == std::string_view::npos;
}

// Blanks, line ends and backslashes are written as their octal numbers: "\040".
std::string unescape(std::string_view text) {
  std::string plain;
  while (!text.empty()) {
    const std::string_view digits = text.substr(1, 3);
    if (text.front() == '\\' && isOctal(digits)) {
      plain += static_cast<char>((digits[0] - '0') * 64 + (digits[1] - '0') * 8 + digits[2] - '0');
      text.remove_prefix(4);
    } else {
      plain += text.front();
      text.remove_prefix(1);
    }
  }
  return plain;
}

}  // namespace

MountTable::MountTable(std::string_view table) {
  while (!table.empty()) {
    std::string_view line = takeUpTo(table, '\n');
    std::array<std::string_view, kFields> fields;
    for (std::string_view& field : fields) {
      field = takeUpTo(line, ' ');
    }
    if (fields[kDirectory].starts_with('/')) {
      // What is mounted over something else comes behind it.
      m_devices.insert_or_assign(unescape(fields[kDirectory]), std::string(fields[kDevice]));
    }
  }
}

MountTable MountTable::ofProcess() {
  std::ifstream file("/proc/self/mountinfo", std::ios::binary);
  return MountTable(std::string(std::istreambuf_iterator<char>(file), {}));
}

std::string MountTable::findAt(const std::string& directory) const {
  const auto found = m_devices.find(directory);
  return found != m_devices.end() ? found->second : "";
}

std::string MountTable::findHolding(std::string directory) const {
  while (directory.size() > 1) {
    if (std::string device = findAt(directory); !device.empty()) {
      return device;
    }
    directory.resize(std::max<std::size_t>(directory.rfind('/'), 1));
  }
  return findAt("/");
}

}  // namespace os
