#include "Os/Windows/WindowsFiles.h"

#include <algorithm>
#include <io.h>
#include <limits>
#include <optional>
#include <windows.h>

#include "Os/Files.h"
#include "Utils/Exception.h"
#include "Utils/Log.h"
#include "Utils/RefusalTexts.h"
#include "platform/Paths.h"
#include "platform/Texts.h"
#include "platform/Windows/Handle.h"
#include "platform/Windows/InUse.h"
#include "platform/Windows/NoErrorDialogs.h"
#include "platform/Windows/SystemPath.h"

namespace os {
namespace {

constexpr utils::LogSource kLog{"Os/Windows/Windows"};

// The signs of patterns: the last three are the wildcards of DOS.
constexpr const char* kWildcards = "*?<>\"";

struct Entry {
  unsigned attributes = 0;
  std::int64_t size = 0;
};

std::wstring getFullPath(const std::filesystem::path& path) {
  std::error_code error;
  return platform::makeAbsolute(path, error).native();
}

// Devices have names in every directory: "C:\\firmware\\NUL".
bool isDevice(const std::filesystem::path& path) {
  return getFullPath(path).starts_with(L"\\\\.\\");
}

// Returns whether the path is a server and its share alone, in which nothing is found: it is in no
// other directory.
bool isShare(const std::filesystem::path& path) {
  const std::wstring full = getFullPath(path);
  return full.starts_with(L"\\\\") && std::count(full.begin(), full.end(), L'\\') == 3 &&
         full.back() != L'\\';
}

// Finds the one entry that the path names. A pattern names none: it is no path. Nor does a device,
// though the system finds one.
std::optional<Entry> find(const std::string& text) {
  const std::filesystem::path path = platform::toPath(text);
  if (text.find_first_of(kWildcards) != std::string::npos || isDevice(path)) {
    return std::nullopt;
  }
  const std::filesystem::path native = platform::toSystemPath(path);
  if (isShare(path)) {
    const DWORD attributes = GetFileAttributesW(native.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES ? std::optional(Entry{attributes, 0})
                                                 : std::nullopt;
  }
  _wfinddata64_t found{};
  const intptr_t search = _wfindfirst64(native.c_str(), &found);
  if (search == -1) {
    return std::nullopt;
  }
  static_cast<void>(_findclose(search));  // what was found is true all the same
  return Entry{found.attrib, found.size};
}

// Sizes have 32 bits in the interface.
bool isBelowLimit(const Entry& entry) {
  return entry.size <= std::numeric_limits<std::int32_t>::max();
}

bool isPlainDirectory(const Entry& entry) {
  return entry.attributes == _A_SUBDIR;
}

// Opens a file whatever others do with it. It is not inherited by the processes that a host starts
// meanwhile. Returns the system's error.
platform::SystemError openToRead(const std::string& path, platform::Handle& file) {
  const HANDLE opened =
      CreateFileW(platform::toSystemPath(platform::toPath(path)).c_str(), GENERIC_READ,
                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                  FILE_ATTRIBUTE_NORMAL, nullptr);
  if (opened == INVALID_HANDLE_VALUE) {
    return GetLastError();
  }
  file = platform::Handle(opened);
  return ERROR_SUCCESS;
}

// Returns how much was read before the end of the file, or before the system refuses to go on.
std::int32_t readOpen(const platform::Handle& file, std::uint8_t* buffer, std::int32_t count) {
  std::int32_t total = 0;
  while (total < count) {
    DWORD got = 0;
    if (ReadFile(file.get(), buffer + total, static_cast<DWORD>(count - total), &got, nullptr) ==
            FALSE ||
        got == 0) {
      break;
    }
    total += static_cast<std::int32_t>(got);
  }
  return total;
}

}  // namespace

std::int32_t getFileSize(const std::string& path) {
  const platform::NoErrorDialogs noDialogs;
  const std::optional<Entry> entry = find(path);
  if (!entry) {
    throw utils::Exception("%s '%s'", utils::refusal::kCouldNotOpen, path.c_str());
  }
  if (isPlainDirectory(*entry)) {
    throw utils::Exception("The specyfied URI '%s' %s ", path.c_str(),
                           utils::refusal::kIsDirectory);
  }
  if (!isBelowLimit(*entry)) {
    throw utils::Exception("%s '%s'", utils::refusal::kCouldNotOpen, path.c_str());
  }
  const auto size = static_cast<std::int32_t>(entry->size);
  utils::logDebug(kLog, "os::getFileSize", "Output size of Provider file: %d", size);
  return size;
}

std::int32_t readFile(const std::string& path, std::uint8_t* buffer, std::int32_t count) {
  return readFileBy(platform::steadyClock(), path, buffer, count);
}

std::int32_t readFileBy(platform::Clock& clock, const std::string& path, std::uint8_t* buffer,
                        std::int32_t count) {
  utils::logDebug(kLog, "os::readFile", "Reading %d bytes from file %s", count, path.c_str());
  const platform::NoErrorDialogs noDialogs;
  std::int32_t total = 0;
  if (const std::optional<Entry> entry = find(path); entry && isBelowLimit(*entry)) {
    platform::Handle file;
    if (platform::retryWhile(platform::isInUse, clock, [&] { return openToRead(path, file); }) ==
        ERROR_SUCCESS) {
      total = readOpen(file, buffer, count);
    }
  }
  utils::logDebug(kLog, "os::readFile", "Read %d bytes", total);
  return total;
}

FileContent readContent(const std::string& path, std::int32_t count) {
  const auto bytes = std::make_shared_for_overwrite<std::uint8_t[]>(
      count > 0 ? static_cast<std::size_t>(count) : 0);
  const std::int32_t total = readFile(path, bytes.get(), count);
  return {bytes, total};
}

bool isInUse(const std::string& path) {
  const platform::NoErrorDialogs noDialogs;
  platform::Handle file;
  return find(path) && platform::isInUse(openToRead(path, file));
}

bool isThisADir(const std::string& path) {
  utils::logDebug(kLog, "os::isThisADir", "Checking if the declared path %s points to a directory",
                  path.c_str());
  const platform::NoErrorDialogs noDialogs;
  const std::optional<Entry> entry = find(path);
  if (!entry || !isPlainDirectory(*entry)) {
    return false;
  }
  utils::logDebug(kLog, "os::isThisADir", "It is a directory");
  return true;
}

}  // namespace os
