#include <cstdio>
#include <io.h>
#include <limits>
#include <memory>
#include <sys/stat.h>
#include <windows.h>

#include "Os/Files.h"
#include "Utils/Exception.h"
#include "Utils/Log.h"
#include "Utils/RefusalTexts.h"
#include "platform/Windows/NoErrorDialogs.h"

namespace os {
namespace {

constexpr utils::LogSource kLog{"Os/Windows/Windows"};

// Binary, and not inherited by the processes that a host starts meanwhile.
constexpr const char* kReading = "rbN";

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

// The signs of patterns: the last three are the wildcards of DOS.
constexpr const char* kWildcards = "*?<>\"";

std::string getFullPath(const std::string& path) {
  std::string full(GetFullPathNameA(path.c_str(), 0, nullptr, nullptr), '\0');
  full.resize(
      GetFullPathNameA(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
  return full;
}

// Devices have names in every directory: "C:\\firmware\\NUL".
bool isDevice(const std::string& path) {
  return getFullPath(path).starts_with("\\\\.\\");
}

// Finds the one entry that the path names. A pattern names none: it is no path. Nor does a device,
// though the system finds one.
bool find(const std::string& path, _finddata64i32_t& entry) {
  if (path.find_first_of(kWildcards) != std::string::npos || isDevice(path)) {
    return false;
  }
  const intptr_t search = _findfirst64i32(path.c_str(), &entry);
  if (search == -1) {
    return false;
  }
  _findclose(search);
  return true;
}

// The entry's own size is cut to 32 bits.
bool isBelowLimit(const std::string& path) {
  struct _stat64 status {};
  return _stat64(path.c_str(), &status) == 0 &&
         status.st_size <= std::numeric_limits<std::int32_t>::max();
}

bool isPlainDirectory(const _finddata64i32_t& entry) {
  return entry.attrib == _A_SUBDIR;
}

}  // namespace

std::int32_t getFileSize(const std::string& path) {
  const platform::NoErrorDialogs noDialogs;
  _finddata64i32_t entry{};
  if (!find(path, entry)) {
    throw utils::Exception("%s '%s'", utils::refusal::kCouldNotOpen, path.c_str());
  }
  if (isPlainDirectory(entry)) {
    throw utils::Exception("The specyfied URI '%s' %s ", path.c_str(),
                           utils::refusal::kIsDirectory);
  }
  if (!isBelowLimit(path)) {
    throw utils::Exception("%s '%s'", utils::refusal::kCouldNotOpen, path.c_str());
  }
  const auto size = static_cast<std::int32_t>(entry.size);
  utils::logDebug(kLog, "os::getFileSize", "Output size of Provider file: %d", size);
  return size;
}

std::int32_t readFile(const std::string& path, std::uint8_t* buffer, std::int32_t count) {
  utils::logDebug(kLog, "os::readFile", "Reading %d bytes from file %s", count, path.c_str());
  const platform::NoErrorDialogs noDialogs;
  std::int32_t total = 0;
  _finddata64i32_t entry{};
  const std::unique_ptr<std::FILE, FileCloser> file(
      find(path, entry) && isBelowLimit(path) ? std::fopen(path.c_str(), kReading) : nullptr);
  if (file != nullptr && count > 0) {
    total = static_cast<std::int32_t>(
        std::fread(buffer, 1, static_cast<std::size_t>(count), file.get()));
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

bool isThisADir(const std::string& path) {
  utils::logDebug(kLog, "os::isThisADir", "Checking if the declared path %s points to a directory",
                  path.c_str());
  const platform::NoErrorDialogs noDialogs;
  _finddata64i32_t entry{};
  if (!find(path, entry) || !isPlainDirectory(entry)) {
    return false;
  }
  utils::logDebug(kLog, "os::isThisADir", "It is a directory");
  return true;
}

}  // namespace os
