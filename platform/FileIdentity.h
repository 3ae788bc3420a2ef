// What tells one content of a file from another, so that a file need not be read again.

#ifndef ORVEX_PLATFORM_FILEIDENTITY_H_
#define ORVEX_PLATFORM_FILEIDENTITY_H_

#include <cstdint>
#include <filesystem>
#include <optional>

namespace platform {

// Tells the content of a file, or the entries of a folder, from what stands at the same path at any
// other time. Only equality means anything.
struct FileIdentity {
  std::uint64_t device = 0;
  std::uint64_t number = 0;
  std::uint64_t size = 0;
  std::int64_t modified = 0;
  std::int64_t changed = 0;

  friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

// Returns the identity of the file or folder that a path leads to; nothing where none can be given:
// nothing is there, it changed so recently that its next change may leave the same times, or the
// platform keeps no times that can be relied on (Windows). What is read between two calls that
// return the same identity is the content for as long as further calls return it. Does not see what
// a program writes through a mapping of the file. Any thread may call. Defined per platform.
[[nodiscard]] std::optional<FileIdentity> identifyFile(const std::filesystem::path& path) noexcept;

}  // namespace platform

#endif  // ORVEX_PLATFORM_FILEIDENTITY_H_
