#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "Os/FileCalls.h"
#include "Os/Files.h"
#include "Utils/Exception.h"
#include "Utils/Log.h"
#include "Utils/RefusalTexts.h"
#include "platform/Posix/Descriptor.h"

namespace os {
namespace {

constexpr utils::LogSource kLog{"Os/Posix/PosixFiles"};
constexpr const char* kNoAnswer =
    "The file system of '%s' does not answer; what is there counts as missing until it does";
// What is read with one call: slow file systems send as much while it is waited for.
constexpr std::size_t kPiece = std::size_t{4} << 20;

using LogFunction = const char*;

// Opens a regular file; a pipe must not hold the caller up, so it is opened without waiting.
platform::Descriptor openRegularFile(const std::string& path) {
  platform::Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status {};
  if (!file.isOpen() || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return {};
  }
  return file;
}

// Logs, once, that a call has not come back; the next ones at the place are not even made.
void reportAway(FileAnswer answer, LogFunction function, const std::string& path) {
  if (answer == FileAnswer::GivenUp) {
    utils::logError(kLog, function, kNoAnswer, path.c_str());
  }
}

// Returns the status, nothing where there is none or no answer.
std::optional<struct stat> findStatus(LogFunction function, const std::string& place,
                                      const std::string& path) {
  const auto found = std::make_shared<std::optional<struct stat>>();
  const FileAnswer answer = fileCalls().make(place, [found, path] {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0) {
      *found = status;
    }
  });
  reportAway(answer, function, path);
  return answer == FileAnswer::InTime ? *found : std::nullopt;
}

// A file as it is read, piece by piece. Outlives its reader where the file system does not answer,
// and so has a buffer of its own.
class FileReading {
 public:
  explicit FileReading(std::string path) : m_path(std::move(path)) {}

  // Reads the next piece; the first time, opens the file.
  void readNext(std::size_t size) {
    m_count = 0;
    if (m_piece == nullptr) {
      m_file = openRegularFile(m_path);
      m_piece = std::make_unique_for_overwrite<std::uint8_t[]>(size);
    }
    while (m_file.isOpen() && m_count < size) {
      const ssize_t got = read(m_file.get(), m_piece.get() + m_count, size - m_count);
      if (got < 0 && errno == EINTR) {
        continue;
      }
      if (got <= 0) {
        break;
      }
      m_count += static_cast<std::size_t>(got);
    }
  }
  [[nodiscard]] std::span<const std::uint8_t> piece() const { return {m_piece.get(), m_count}; }

 private:
  const std::string m_path;
  platform::Descriptor m_file;
  std::unique_ptr<std::uint8_t[]> m_piece;  // as large as the first, which is the largest
  std::size_t m_count = 0;
};

}  // namespace

std::int32_t getFileSize(const std::string& path) {
  constexpr LogFunction kFunction = "os::getFileSize";
  const std::optional<struct stat> status = findStatus(kFunction, directoryOf(path), path);
  if (status && S_ISDIR(status->st_mode)) {
    throw utils::Exception("The specyfied URI '%s' %s ", path.c_str(),
                           utils::refusal::kIsDirectory);
  }
  if (!status || !S_ISREG(status->st_mode) ||
      status->st_size > std::numeric_limits<std::int32_t>::max()) {
    throw utils::Exception("%s '%s'", utils::refusal::kCouldNotOpen, path.c_str());
  }
  const auto size = static_cast<std::int32_t>(status->st_size);
  utils::logDebug(kLog, kFunction, "Output size of Provider file: %d", size);
  return size;
}

std::int32_t readFile(const std::string& path, std::uint8_t* buffer, std::int32_t count) {
  constexpr LogFunction kFunction = "os::readFile";
  utils::logDebug(kLog, kFunction, "Reading %d bytes from file %s", count, path.c_str());
  const auto reading = std::make_shared<FileReading>(path);
  std::int32_t total = 0;
  while (total < count) {
    const std::size_t size = std::min(kPiece, static_cast<std::size_t>(count - total));
    const FileAnswer answer =
        fileCalls().make(directoryOf(path), [reading, size] { reading->readNext(size); });
    reportAway(answer, kFunction, path);
    if (answer != FileAnswer::InTime) {
      break;
    }
    const std::span<const std::uint8_t> piece = reading->piece();
    std::copy(piece.begin(), piece.end(), buffer + total);
    total += static_cast<std::int32_t>(piece.size());
    if (piece.size() < size) {
      break;
    }
  }
  utils::logDebug(kLog, kFunction, "Read %d bytes", total);
  return total;
}

bool isInUse(const std::string& /*path*/) {
  return false;
}

bool isThisADir(const std::string& path) {
  utils::logDebug(kLog, "os::isThisADir", "Checking if the declared path %s points to a directory",
                  path.c_str());
  const std::optional<struct stat> status = findStatus("os::isThisADir", path, path);
  if (!status || !S_ISDIR(status->st_mode)) {
    return false;
  }
  utils::logDebug(kLog, "os::isThisADir", "It is a directory");
  return true;
}

}  // namespace os
