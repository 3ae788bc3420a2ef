#include <algorithm>
#include <ctime>
#include <sys/stat.h>

#include "platform/FileIdentity.h"
#include "platform/Posix/FileStamps.h"

namespace platform {
namespace {

constexpr std::int64_t kSecond = 1'000'000'000;

// The system stamps files with the time of its last clock tick, and there are at least 100 ticks a
// second. A file that has been left alone for some of them gets other times when it changes again.
constexpr std::int64_t kSettlingTime = 40'000'000;
// The same for a file system that seems to keep whole seconds, or every other one.
constexpr std::int64_t kSettlingTimeOfSeconds = 3 * kSecond;

std::int64_t nanoseconds(const timespec& time) {
  return std::int64_t{time.tv_sec} * kSecond + time.tv_nsec;
}

}  // namespace

std::optional<FileIdentity> identifyFile(const std::filesystem::path& path) noexcept {
  return identifyFileAt(path, currentFileStamp());
}

std::optional<std::int64_t> currentFileStamp() noexcept {
  timespec now{};
  return ::clock_gettime(CLOCK_REALTIME_COARSE, &now) == 0 ? std::optional(nanoseconds(now))
                                                           : std::nullopt;
}

std::optional<FileIdentity> identifyFileAt(const std::filesystem::path& path,
                                           std::optional<std::int64_t> now) noexcept {
  struct stat state {};
  if (!now || ::stat(path.c_str(), &state) != 0) {
    return std::nullopt;
  }
  const std::int64_t modified = nanoseconds(state.st_mtim);
  const std::int64_t changed = nanoseconds(state.st_ctim);
  const std::int64_t age = *now - std::max(modified, changed);
  if (age < (modified % kSecond == 0 ? kSettlingTimeOfSeconds : kSettlingTime)) {
    return std::nullopt;
  }
  return FileIdentity{state.st_dev, state.st_ino, static_cast<std::uint64_t>(state.st_size),
                      modified, changed};
}

}  // namespace platform
