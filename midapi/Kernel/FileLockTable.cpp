#include "midapi/Kernel/FileLockTable.h"

#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include "midapi/Hex.h"
#include "platform/Posix/Descriptor.h"

namespace ma {
namespace {

// A file as the table names it.
struct FileNumber {
  std::uint64_t major = 0;
  std::uint64_t minor = 0;
  std::string inode;
};

// Reads "fe:00:10952925".
std::optional<FileNumber> readFileNumber(std::string_view text) {
  constexpr auto kNone = std::string_view::npos;
  const std::size_t first = text.find(':');
  const std::size_t second = first == kNone ? kNone : text.find(':', first + 1);
  if (second == kNone) {
    return std::nullopt;
  }
  const auto major = parseHex(text.substr(0, first));
  const auto minor = parseHex(text.substr(first + 1, second - first - 1));
  return major && minor
             ? std::optional(FileNumber{*major, *minor, std::string(text.substr(second + 1))})
             : std::nullopt;
}

// Reads the file that a line is about: "1: FLOCK  ADVISORY  WRITE 5606 fe:00:10952925 0 EOF". Of
// those who wait for a lock, and of other kinds of locks, nothing.
std::optional<FileNumber> readLine(const std::string& line) {
  std::istringstream words(line);
  std::string number;
  std::string kind;
  std::string isBinding;
  std::string access;
  std::string process;
  std::string file;
  words >> number >> kind >> isBinding >> access >> process >> file;
  return words && kind == "FLOCK" && access == "WRITE" ? readFileNumber(file) : std::nullopt;
}

bool isNumberOf(const FileNumber& number, const struct stat& file) {
  // A device without a driver stands for a file system that tells its files' devices from the one
  // that it is known by in the kernel.
  const bool isDevice = major(file.st_dev) == 0 ||
                        (number.major == major(file.st_dev) && number.minor == minor(file.st_dev));
  return isDevice && number.inode == std::to_string(file.st_ino);
}

bool isHeldFromOthers(const std::filesystem::path& file) {
  const platform::Descriptor opened(
      ::open(file.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  return opened.isOpen() && ::flock(opened.get(), LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

}  // namespace

bool isFileLocked(const std::filesystem::path& file, const std::filesystem::path& table) {
  struct stat state {};
  if (::lstat(file.c_str(), &state) != 0) {
    return false;
  }
  std::ifstream lines(table);
  if (!lines) {
    return isHeldFromOthers(file);
  }
  for (std::string line; std::getline(lines, line);) {
    if (const auto number = readLine(line); number && isNumberOf(*number, state)) {
      return true;
    }
  }
  return false;
}

}  // namespace ma
