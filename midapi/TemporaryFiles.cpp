#include "midapi/TemporaryFiles.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <random>
#include <string_view>
#include <vector>

#include "midapi/Hex.h"
#include "platform/Texts.h"

namespace ma {
namespace {

constexpr std::string_view kMark = ".new";
// What earlier versions put behind the mark had half of the digits, or none.
constexpr std::array<std::size_t, 2> kDigits = {16, 8};

constexpr std::chrono::milliseconds kPause{10};
constexpr std::chrono::seconds kPatience{2};

// A folder of ours has a handful of names in it; somebody else's may have any number.
constexpr std::size_t kMaxNames = 10'000;

bool isSuffix(std::string_view text) {
  return text.empty() ||
         (text.front() == '-' &&
          text.find_first_not_of("0123456789abcdef", 1) == std::string_view::npos &&
          std::find(kDigits.begin(), kDigits.end(), text.size() - 1) != kDigits.end());
}

template <class Remove>
void sweep(FileSystem& files, const std::filesystem::path& folder,
           const std::function<bool(const std::string&)>& isOurs, Remove remove) {
  try {
    for (const std::filesystem::path& name : files.entries(folder, kMaxNames)) {
      if (const auto base = baseOfTemporary(name); base && isOurs(*base)) {
        remove(folder / name);
      }
    }
  } catch (const FileFault&) {
    return;
  }
}

}  // namespace

std::filesystem::path temporaryName(const std::filesystem::path& path) {
  std::random_device random;
  std::filesystem::path name = path;
  name += std::string(kMark) + "-" + hexText(random(), 8) + hexText(random(), 8);
  return name;
}

std::optional<std::string> baseOfTemporary(const std::filesystem::path& name) {
  const std::string shown = platform::toShownText(name);
  const std::size_t mark = shown.rfind(kMark);
  // The text of another name may look like one of ours.
  if (name != shown || mark == std::string::npos || mark == 0 ||
      !isSuffix(std::string_view(shown).substr(mark + kMark.size()))) {
    return std::nullopt;
  }
  return shown.substr(0, mark);
}

std::optional<bool> wasPlaced(FileSystem& files, const std::filesystem::path& temporary,
                              const FileFault& fault) noexcept {
  // Where it was missing, somebody else has taken it away.
  if (fault.isMissingFile()) {
    return false;
  }
  try {
    return !files.exists(temporary);
  } catch (const FileFault&) {
    return std::nullopt;
  }
}

void putInPlace(FileSystem& files, TemporaryPath& temporary, const std::filesystem::path& path) {
  try {
    files.replace(temporary.path(), path);
  } catch (const FileFault& fault) {
    if (!wasPlaced(files, temporary.path(), fault).value_or(false)) {
      throw;
    }
  }
  temporary.keep();
}

void writeNewFile(FileSystem& files, const std::filesystem::path& path, ConstBytes content) {
  const auto file = files.create(path);
  file->append(content);
  file->sync();
  file->close();
}

void replaceContent(FileSystem& files, const std::filesystem::path& path, ConstBytes content) {
  TemporaryPath temporary(files, temporaryName(path));
  writeNewFile(files, temporary.path(), content);
  files.replace(temporary.path(), path);
  temporary.keep();
}

std::unique_ptr<FileLock> waitForLock(FileSystem& files, const std::filesystem::path& path,
                                      platform::Clock& clock) {
  const platform::Clock::TimePoint deadline = clock.now() + kPatience;
  for (;;) {
    std::unique_ptr<FileLock> lock = files.lock(path);
    if (lock != nullptr || clock.now() >= deadline) {
      return lock;
    }
    clock.sleepFor(kPause);
  }
}

void sweepTemporaryFiles(FileSystem& files, const std::filesystem::path& folder,
                         const std::function<bool(const std::string&)>& isOurs) {
  sweep(files, folder, isOurs, [&files](const std::filesystem::path& path) {
    try {
      files.remove(path);
    } catch (const FileFault&) {
      return;
    }
  });
}

void sweepTemporaryFolders(FileSystem& files, const std::filesystem::path& folder,
                           const std::function<bool(const std::string&)>& isOurs) {
  sweep(files, folder, isOurs,
        [&files](const std::filesystem::path& path) { files.removeQuietly(path); });
}

}  // namespace ma
