#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

#include "Os/Files.h"
#include "Utils/Exception.h"
#include "Utils/Log.h"
#include "Utils/RefusalTexts.h"
#include "platform/Posix/Descriptor.h"

namespace os {
namespace {

constexpr utils::LogSource kLog{"Os/Posix/PosixFiles"};

// Opens a regular file; a pipe must not hold the caller up, so it is opened without waiting.
platform::Descriptor openRegularFile(const std::string& path) {
  platform::Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status {};
  if (!file.isOpen() || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return {};
  }
  return file;
}

}  // namespace

std::int32_t getFileSize(const std::string& path) {
  struct stat status {};
  const bool exists = stat(path.c_str(), &status) == 0;
  if (exists && S_ISDIR(status.st_mode)) {
    throw utils::Exception("The specyfied URI '%s' %s ", path.c_str(),
                           utils::refusal::kIsDirectory);
  }
  if (!exists || !S_ISREG(status.st_mode) ||
      status.st_size > std::numeric_limits<std::int32_t>::max()) {
    throw utils::Exception("%s '%s'", utils::refusal::kCouldNotOpen, path.c_str());
  }
  const auto size = static_cast<std::int32_t>(status.st_size);
  utils::logDebug(kLog, "os::getFileSize", "Output size of Provider file: %d", size);
  return size;
}

std::int32_t readFile(const std::string& path, std::uint8_t* buffer, std::int32_t count) {
  utils::logDebug(kLog, "os::readFile", "Reading %d bytes from file %s", count, path.c_str());
  const platform::Descriptor file = openRegularFile(path);
  std::int32_t total = 0;
  while (file.isOpen() && total < count) {
    const ssize_t got = read(file.get(), buffer + total, static_cast<std::size_t>(count - total));
    if (got < 0 && errno == EINTR) {
      continue;
    }
    if (got <= 0) {
      break;
    }
    total += static_cast<std::int32_t>(got);
  }
  utils::logDebug(kLog, "os::readFile", "Read %d bytes", total);
  return total;
}

bool isThisADir(const std::string& path) {
  utils::logDebug(kLog, "os::isThisADir", "Checking if the declared path %s points to a directory",
                  path.c_str());
  struct stat status {};
  if (stat(path.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) {
    return false;
  }
  utils::logDebug(kLog, "os::isThisADir", "It is a directory");
  return true;
}

}  // namespace os
