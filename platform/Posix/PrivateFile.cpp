#include "platform/Posix/PrivateFile.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace platform {
namespace {

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

[[noreturn]] void refuseUnreadable(const std::string& path) {
  throw PrivateFileFault("'" + path + "' cannot be read; check the path and its permissions");
}

Descriptor demandOpen(const std::string& path, int flags) {
  int number = -1;
  do {
    number = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | flags);
  } while (number < 0 && errno == EINTR);
  if (number < 0) {
    refuseUnreadable(path);
  }
  return Descriptor(number);
}

FileStamp demandStamp(const Descriptor& file, const std::string& path) {
  struct stat status {};
  if (fstat(file.get(), &status) != 0) {
    refuseUnreadable(path);
  }
  return toStamp(status);
}

// Appends what comes next. Returns false at the end.
bool readOn(const Descriptor& file, const std::string& path, std::string& content) {
  constexpr std::size_t kPiece = 4096;
  std::array<char, kPiece> buffer{};
  ssize_t got = -1;
  do {
    got = read(file.get(), buffer.data(), buffer.size());
  } while (got < 0 && errno == EINTR);
  if (got < 0) {
    refuseUnreadable(path);
  }
  content.append(buffer.data(), static_cast<std::size_t>(got));
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
    throw PrivateFileFault(
        "'" + path + "' can be read or changed by others than its owner; run: chmod 600 " + path);
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
    refuseUnreadable(path);
  }
  demandPrivate(path, result.stamp, privacy);
  while (readOn(file, path, result.content)) {
    if (result.content.size() > most) {
      refuseLong(path, most);
    }
  }
  return result;
}

std::string readPrivateLine(const std::string& path, std::size_t most) {
  const Descriptor file = demandOpen(path, 0);
  const FileStamp stamp = demandStamp(file, path);
  // A terminal is others' to write messages to.
  if (S_ISREG(stamp.mode) || S_ISFIFO(stamp.mode)) {
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
