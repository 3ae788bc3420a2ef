#include <system_error>

#include "platform/FileLook.h"

namespace platform {

namespace fs = std::filesystem;

FileLook lookAtFile(const fs::path& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (!fs::exists(status)) {
    return {};
  }
  if (fs::is_regular_file(status)) {
    const std::uintmax_t size = fs::file_size(path, error);
    return error ? FileLook{} : FileLook{FileKind::Regular, size};
  }
  return {fs::is_directory(status) ? FileKind::Directory : FileKind::Other, 0};
}

bool areOneFile(const fs::path& one, const fs::path& other) {
  std::error_code error;
  return fs::equivalent(one, other, error);
}

}  // namespace platform
