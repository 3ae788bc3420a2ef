#include "Os/Texts.h"

namespace os {

std::filesystem::path toPath(const std::string& text) {
  return text;
}

std::optional<std::string> toText(const std::filesystem::path& path) {
  return path.native();
}

std::string toShownText(const std::filesystem::path& path) {
  return path.native();
}

std::string toUtf8(const std::string& text) {
  return text;
}

}  // namespace os
