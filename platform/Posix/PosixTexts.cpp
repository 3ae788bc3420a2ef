#include "platform/Texts.h"

namespace platform {

std::filesystem::path toPath(const std::string& text) {
  return text;
}

std::optional<std::string> toText(const std::filesystem::path& path) {
  return path.native();
}

std::optional<std::string> toGenericText(const std::filesystem::path& path) {
  return toText(path);
}

std::string toShownText(const std::filesystem::path& path) {
  return path.native();
}

std::string fromUtf8(const std::string& utf8) {
  return utf8;
}

std::string toUtf8(const std::string& text) {
  return text;
}

}  // namespace platform
