// What stands at a path, whatever its length: what std::filesystem tells where it knows all paths
// of the platform. Links are followed. Defined per platform.

#ifndef ORVEX_PLATFORM_FILELOOK_H_
#define ORVEX_PLATFORM_FILELOOK_H_

#include <cstdint>
#include <filesystem>

namespace platform {

enum class FileKind {
  Missing,  // or nobody may know of it
  Regular,
  Directory,
  Other,  // a device, a pipe
};

struct FileLook {
  FileKind kind = FileKind::Missing;
  std::uintmax_t size = 0;  // of a regular file
};

// Any thread may call both.
[[nodiscard]] FileLook lookAtFile(const std::filesystem::path& path);

// Returns whether two paths lead to one file that is there.
[[nodiscard]] bool areOneFile(const std::filesystem::path& one, const std::filesystem::path& other);

}  // namespace platform

#endif  // ORVEX_PLATFORM_FILELOOK_H_
