#include "platform/Paths.h"

namespace platform {

bool isAbsolute(const std::filesystem::path& path) {
  return path.is_absolute();
}

std::filesystem::path makeAbsolute(const std::filesystem::path& path, std::error_code& error) {
  return std::filesystem::absolute(path, error);
}

std::filesystem::path makeNormal(const std::filesystem::path& path, std::error_code& error) {
  return makeAbsolute(path, error).lexically_normal();
}

}  // namespace platform
