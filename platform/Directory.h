// What is in a directory, whatever the length of its path. Defined per platform.

#ifndef ORVEX_PLATFORM_DIRECTORY_H_
#define ORVEX_PLATFORM_DIRECTORY_H_

#include <filesystem>
#include <functional>
#include <system_error>

namespace platform {

struct DirectoryEntry {
  std::filesystem::path name;
  bool isDirectory = false;  // or a link to one
  bool isLink = false;  // leads elsewhere; Windows: a junction or the mount of a volume does, too
};

// Hands each entry of a directory out, in no order, until `take` returns false. Returns why it
// could not go on. Any thread may call.
[[nodiscard]] std::error_code forEachEntry(const std::filesystem::path& directory,
                                           const std::function<bool(const DirectoryEntry&)>& take);

}  // namespace platform

#endif  // ORVEX_PLATFORM_DIRECTORY_H_
