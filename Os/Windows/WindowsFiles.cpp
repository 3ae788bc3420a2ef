#include <cstdio>
#include <io.h>
#include <limits>
#include <memory>
#include <sys/stat.h>

#include "Os/Files.h"
#include "Utils/Exception.h"
#include "Utils/Log.h"

namespace os {
namespace {

constexpr utils::LogSource kLog{"Os/Windows/Windows"};

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

// Finds the one entry that the path names. A pattern names none: it is no path.
bool find(const std::string& path, _finddata64i32_t& entry) {
  if (path.find_first_of("*?") != std::string::npos) {
    return false;
  }
  const intptr_t search = _findfirst64i32(path.c_str(), &entry);
  if (search == -1) {
    return false;
  }
  _findclose(search);
  return true;
}

// The size of the entry is that of _findfirst64i32 cut to 32 bits.
bool isRegularBelowLimit(const std::string& path) {
  struct _stat64 status {};
  return _stat64(path.c_str(), &status) == 0 && (status.st_mode & _S_IFMT) == _S_IFREG &&
         status.st_size <= std::numeric_limits<std::int32_t>::max();
}

bool isPlainDirectory(const _finddata64i32_t& entry) {
  return entry.attrib == _A_SUBDIR;
}

}  // namespace

std::int32_t getFileSize(const std::string& path) {
  _finddata64i32_t entry{};
  if (!find(path, entry)) {
    throw utils::Exception("Could not open the file '%s'", path.c_str());
  }
  if (isPlainDirectory(entry)) {
    throw utils::Exception("The specyfied URI '%s' points to a directory ", path.c_str());
  }
  if (!isRegularBelowLimit(path)) {
    throw utils::Exception("Could not open the file '%s'", path.c_str());
  }
  const auto size = static_cast<std::int32_t>(entry.size);
  utils::logDebug(kLog, "os::getFileSize", "Output size of Provider file: %d", size);
  return size;
}

std::int32_t readFile(const std::string& path, std::uint8_t* buffer, std::int32_t count) {
  utils::logDebug(kLog, "os::readFile", "Reading %d bytes from file %s", count, path.c_str());
  std::int32_t total = 0;
  const std::unique_ptr<std::FILE, FileCloser> file(
      isRegularBelowLimit(path) ? std::fopen(path.c_str(), "rb") : nullptr);
  if (file != nullptr && count > 0) {
    total = static_cast<std::int32_t>(
        std::fread(buffer, 1, static_cast<std::size_t>(count), file.get()));
  }
  utils::logDebug(kLog, "os::readFile", "Read %d bytes", total);
  return total;
}

bool isThisADir(const std::string& path) {
  utils::logDebug(kLog, "os::isThisADir", "Checking if the declared path %s points to a directory",
                  path.c_str());
  _finddata64i32_t entry{};
  if (!find(path, entry) || !isPlainDirectory(entry)) {
    return false;
  }
  utils::logDebug(kLog, "os::isThisADir", "It is a directory");
  return true;
}

}  // namespace os
