// The file system of a POSIX machine, with the clock by which it judges the age of files.

#ifndef ORVEX_MIDAPI_POSIX_POSIXFILESYSTEM_H_
#define ORVEX_MIDAPI_POSIX_POSIXFILESYSTEM_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "midapi/FileSystem.h"

namespace ma {

// Returns the time that the system would stamp a file with now, in nanoseconds since the epoch;
// nothing when it cannot be told. Throws nothing.
using StampClock = std::function<std::optional<std::int64_t>()>;

[[nodiscard]] std::unique_ptr<FileSystem> makePosixFileSystem(StampClock now);

}  // namespace ma

#endif  // ORVEX_MIDAPI_POSIX_POSIXFILESYSTEM_H_
