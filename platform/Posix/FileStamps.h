// The times with which the system stamps files, by which the age of a file is judged.

#ifndef ORVEX_PLATFORM_POSIX_FILESTAMPS_H_
#define ORVEX_PLATFORM_POSIX_FILESTAMPS_H_

#include <cstdint>
#include <filesystem>
#include <optional>

#include "platform/FileIdentity.h"

namespace platform {

// Returns the time that the system would stamp a file with now, in nanoseconds since the epoch;
// nothing when it cannot be told.
[[nodiscard]] std::optional<std::int64_t> currentFileStamp() noexcept;

// Returns what identifyFile returns when it is `now`.
[[nodiscard]] std::optional<FileIdentity> identifyFileAt(const std::filesystem::path& path,
                                                         std::optional<std::int64_t> now) noexcept;

}  // namespace platform

#endif  // ORVEX_PLATFORM_POSIX_FILESTAMPS_H_
