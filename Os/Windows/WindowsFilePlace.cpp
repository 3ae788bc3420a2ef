#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <windows.h>

#include "Os/FilePlace.h"
#include "Utils/Ascii.h"
#include "platform/Texts.h"

namespace os {
namespace {

// Asks the system, which knows the current directory of each drive and asks no file system. Names
// do not differ by case here.
std::string makeAbsolute(const std::string& path) {
  const std::wstring text = platform::toPath(path).wstring();
  std::wstring full(GetFullPathNameW(text.c_str(), 0, nullptr, nullptr), L'\0');
  full.resize(
      GetFullPathNameW(text.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
  std::string absolute = platform::toShownText(std::filesystem::path(full));
  for (char& sign : absolute) {
    sign = sign == '\\' ? '/' : utils::toLowerAscii(sign);
  }
  return absolute;
}

// Returns how long the drive or the share in front of the path is.
std::size_t lengthOfRoot(const std::string& path) {
  if (!path.starts_with("//")) {
    return std::min(path.find('/'), path.size());
  }
  const std::size_t server = std::min(path.find('/', 2), path.size());
  return std::min(path.find('/', server + 1), path.size());
}

}  // namespace

void walkPlaces(const std::string& path, const EnterPlace& enter) {
  const std::string absolute = makeAbsolute(path);
  std::size_t end = lengthOfRoot(absolute);
  const std::string root = absolute.substr(0, end);
  while (enter(root, absolute.substr(0, end)) && end < absolute.size()) {
    end = std::min(absolute.find('/', end + 1), absolute.size());
  }
}

}  // namespace os
