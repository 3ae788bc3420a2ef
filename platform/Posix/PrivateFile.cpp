#include "platform/Posix/PrivateFile.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <fcntl.h>
#include <poll.h>
#include <pwd.h>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace platform {
namespace {

constexpr std::size_t kPiece = 4096;  // that is read at a time

constexpr mode_t kOfOthers = S_IRWXG | S_IRWXO;
constexpr mode_t kWritingOfOthers = S_IWGRP | S_IWOTH;

FileStamp toStamp(const struct stat& status) {
  constexpr std::int64_t kNanoseconds = 1'000'000'000;
  const auto toNumber = [](const timespec& time) {
    return static_cast<std::int64_t>(time.tv_sec) * kNanoseconds + time.tv_nsec;
  };
  return {.device = status.st_dev,
          .number = status.st_ino,
          .size = status.st_size,
          .owner = status.st_uid,
          .mode = status.st_mode,
          .written = toNumber(status.st_mtim),
          .changed = toNumber(status.st_ctim)};
}

// Returns "anna (1000)", or the number alone.
std::string describeUser(uid_t user) {
  constexpr std::size_t kFirstRecordBytes = 1024;
  constexpr std::size_t kMostRecordBytes = 1024 * 1024;
  std::vector<char> buffer(kFirstRecordBytes);
  passwd entry{};
  passwd* found = nullptr;
  while (getpwuid_r(user, &entry, buffer.data(), buffer.size(), &found) == ERANGE &&
         buffer.size() < kMostRecordBytes) {
    buffer.resize(buffer.size() * 2);
  }
  const std::string number = std::to_string(user);
  return found == nullptr ? number : std::string(found->pw_name) + " (" + number + ")";
}

[[noreturn]] void refuseUnreadable(const std::string& path, int error) {
  throw PrivateFileFault("'" + path + "' cannot be read; check the path and its permissions",
                         error);
}

// Returns the number of this process's descriptor that a path stands for.
std::optional<int> findGiven(std::string_view path) {
  if (path == "/dev/stdin") {
    return STDIN_FILENO;
  }
  for (const std::string_view folder : {"/dev/fd/", "/proc/self/fd/"}) {
    if (!path.starts_with(folder)) {
      continue;
    }
    const std::string_view digits = path.substr(folder.size());
    int number = -1;
    const auto [stop, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error == std::errc() && stop == digits.data() + digits.size() && number >= 0) {
      return number;
    }
  }
  return std::nullopt;
}

Descriptor demandCopy(int number, const std::string& path) {
  Descriptor copy(fcntl(number, F_DUPFD_CLOEXEC, 0));
  if (!copy.isOpen()) {
    refuseUnreadable(path, errno);
  }
  return copy;
}

// Waits for the other end of what is not to be waited for, as its giver has set it.
void awaitInput(const Descriptor& file) {
  pollfd source{file.get(), POLLIN, 0};
  static_cast<void>(poll(&source, 1, -1));
}

Descriptor demandOpen(const std::string& path, int flags) {
  int number = -1;
  do {
    number = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | flags);
  } while (number < 0 && errno == EINTR);
  if (number < 0) {
    refuseUnreadable(path, errno);
  }
  return Descriptor(number);
}

FileStamp demandStamp(const Descriptor& file, const std::string& path) {
  struct stat status {};
  if (fstat(file.get(), &status) != 0) {
    refuseUnreadable(path, errno);
  }
  return toStamp(status);
}

// Appends what comes next. Returns false at the end.
bool readOn(const Descriptor& file, const std::string& path, std::string& content) {
  const std::size_t size = content.size();
  // Where it is to stay: no second copy of a secret is left behind.
  content.resize(size + kPiece);
  ssize_t got = read(file.get(), content.data() + size, kPiece);
  while (got < 0 && (errno == EINTR || errno == EAGAIN)) {
    if (errno == EAGAIN) {
      awaitInput(file);
    }
    got = read(file.get(), content.data() + size, kPiece);
  }
  if (got < 0) {
    refuseUnreadable(path, errno);
  }
  content.resize(size + static_cast<std::size_t>(got));
  return got > 0;
}

[[noreturn]] void refuseLong(const std::string& path, std::size_t most) {
  throw PrivateFileFault("'" + path + "' is longer than " + std::to_string(most) +
                         " bytes; name the right file, or make it shorter");
}

}  // namespace

std::optional<FileStamp> findStamp(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 ? std::optional(toStamp(status)) : std::nullopt;
}

void demandPrivate(const std::string& path, const FileStamp& stamp, Privacy privacy) {
  demandPrivate(path, stamp, privacy, geteuid());
}

void demandPrivate(const std::string& path, const FileStamp& stamp, Privacy privacy,
                   std::uint32_t user) {
  constexpr uid_t kRoot = 0;
  if (stamp.owner != kRoot && stamp.owner != user) {
    throw PrivateFileFault("'" + path + "' belongs to the user " + describeUser(stamp.owner) +
                           ", who could change it; run: chown " + std::to_string(user) + " " +
                           path);
  }
  if (privacy == Privacy::Secret && (stamp.mode & kOfOthers) != 0) {
    // Root's file that a group may read is one that this user could read no more.
    const std::string owner =
        stamp.owner == user ? "" : "chown " + std::to_string(user) + " " + path + " && ";
    throw PrivateFileFault("'" + path + "' can be read or changed by others than its owner; run: " +
                           owner + "chmod 600 " + path);
  }
  if (privacy == Privacy::Unchanged && (stamp.mode & kWritingOfOthers) != 0) {
    throw PrivateFileFault("'" + path +
                           "' can be changed by others than its owner; run: chmod go-w " + path);
  }
}

PrivateFile readPrivateFile(const std::string& path, Privacy privacy, std::size_t most) {
  const Descriptor file = demandOpen(path, O_NONBLOCK);
  PrivateFile result;
  result.stamp = demandStamp(file, path);
  if (!S_ISREG(result.stamp.mode)) {
    refuseUnreadable(path, S_ISDIR(result.stamp.mode) ? EISDIR : EOPNOTSUPP);
  }
  demandPrivate(path, result.stamp, privacy);
  // With room for the read that meets the end: a string that grows leaves its old memory behind.
  const auto size = static_cast<std::uint64_t>(std::max<std::int64_t>(result.stamp.size, 0));
  result.content.reserve(static_cast<std::size_t>(std::min<std::uint64_t>(size, most)) +
                         2 * kPiece);
  while (readOn(file, path, result.content)) {
    if (result.content.size() > most) {
      refuseLong(path, most);
    }
  }
  return result;
}

std::string readPrivateLine(const std::string& path, std::size_t most) {
  const std::optional<int> given = findGiven(path);
  const Descriptor file = given ? demandCopy(*given, path) : demandOpen(path, 0);
  const FileStamp stamp = demandStamp(file, path);
  // A terminal is others' to write messages to.
  if (S_ISREG(stamp.mode) || (S_ISFIFO(stamp.mode) && !given)) {
    demandPrivate(path, stamp, Privacy::Secret);
  }
  std::string content;
  while (content.find('\n') == std::string::npos && readOn(file, path, content)) {
    if (content.size() > most) {
      refuseLong(path, most);
    }
  }
  return content.substr(0, content.find('\n'));
}

}  // namespace platform
