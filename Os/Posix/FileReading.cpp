#include "Os/Posix/FileReading.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

#include "Os/FileCalls.h"
#include "platform/Posix/Descriptor.h"

namespace os {
namespace {

// What is read with one call: slow file systems send as much while it is waited for.
constexpr std::size_t kPiece = std::size_t{4} << 20;

FileSilence silenceOf(FileAnswer answer) {
  switch (answer) {
    case FileAnswer::InTime:
      break;
    case FileAnswer::GivenUp:
      return FileSilence::GivenUp;
    case FileAnswer::StillAway:
      return FileSilence::StillAway;
  }
  return FileSilence::None;
}

// Opens a regular file; a pipe must not hold the caller up, so it is opened without waiting.
platform::Descriptor openRegularFile(const std::string& path) {
  platform::Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status {};
  if (!file.isOpen() || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return {};
  }
  return file;
}

// A file as it is read, piece by piece. Outlives its reader where the file system does not answer,
// and so has a buffer of its own.
class Reading {
 public:
  Reading(std::string path, std::size_t count)
      : m_path(std::move(path)), m_bytes(std::make_shared_for_overwrite<std::uint8_t[]>(count)) {}

  // Reads the next piece; the first time, opens the file.
  void readNext(std::size_t size) {
    if (!std::exchange(m_isBegun, true)) {
      m_file = openRegularFile(m_path);
    }
    const std::size_t end = m_count + size;
    while (m_file.isOpen() && m_count < end) {
      const ssize_t got = read(m_file.get(), m_bytes.get() + m_count, end - m_count);
      if (got < 0 && errno == EINTR) {
        continue;
      }
      if (got <= 0) {
        break;
      }
      m_count += static_cast<std::size_t>(got);
    }
  }
  [[nodiscard]] std::size_t count() const { return m_count; }
  [[nodiscard]] std::shared_ptr<const std::uint8_t[]> bytes() const { return m_bytes; }

 private:
  const std::string m_path;
  const std::shared_ptr<std::uint8_t[]> m_bytes;
  platform::Descriptor m_file;
  bool m_isBegun = false;
  std::size_t m_count = 0;
};

}  // namespace

FileStatus readFileStatus(const std::string& path) {
  const auto found = std::make_shared<std::optional<struct stat>>();
  const FileAnswer answer = fileCalls().make(path, [found, path] {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0) {
      *found = status;
    }
  });
  return {silenceOf(answer), answer == FileAnswer::InTime ? *found : std::nullopt};
}

FileBytes readFileBytes(const std::string& path, std::size_t count) {
  if (count == 0) {
    return {};
  }
  const auto reading = std::make_shared<Reading>(path, count);
  FileBytes content{FileSilence::None, reading->bytes(), 0};
  const auto deadline = std::chrono::steady_clock::now() + fileCalls().wholePatience();
  while (content.size < count) {
    if (std::chrono::steady_clock::now() > deadline) {
      content.silence = FileSilence::TooSlow;
      break;
    }
    const std::size_t size = std::min(kPiece, count - content.size);
    const FileAnswer answer = fileCalls().make(path, [reading, size] { reading->readNext(size); });
    content.silence = silenceOf(answer);
    if (answer != FileAnswer::InTime) {
      break;
    }
    const std::size_t got = reading->count() - content.size;
    content.size += got;
    if (got < size) {
      break;
    }
  }
  return content;
}

}  // namespace os
