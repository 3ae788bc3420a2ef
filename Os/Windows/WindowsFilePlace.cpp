#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <system_error>

#include "Os/FilePlace.h"
#include "Utils/Ascii.h"
#include "platform/Paths.h"
#include "platform/Texts.h"

namespace os {
namespace {

// The system knows the current directory of each drive and asks no file system. Names do not differ
// by case here.
std::string toPlace(const std::string& path) {
  std::error_code error;
  const std::filesystem::path whole = platform::makeAbsolute(platform::toPath(path), error);
  std::string place = platform::toShownText(whole);
  for (char& sign : place) {
    sign = sign == '\\' ? '/' : utils::toLowerAscii(sign);
  }
  return place;
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
  const std::string absolute = toPlace(path);
  std::size_t end = lengthOfRoot(absolute);
  const std::string root = absolute.substr(0, end);
  while (enter(root, absolute.substr(0, end)) && end < absolute.size()) {
    end = std::min(absolute.find('/', end + 1), absolute.size());
  }
}

}  // namespace os
