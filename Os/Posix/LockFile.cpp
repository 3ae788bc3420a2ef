#include "Os/Posix/LockFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <pwd.h>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

#include "Utils/Format.h"

namespace os {
namespace {

namespace fs = std::filesystem;

using platform::Descriptor;
using Moment = std::chrono::steady_clock::time_point;

constexpr uid_t kRoot = 0;
constexpr mode_t kOwnersAlone = 0600;
constexpr mode_t kOthers = 0007;
constexpr mode_t kAllWithStickyBit = 01777;
// O_NONBLOCK: a FIFO in the place of the file must not hold anybody up.
constexpr int kFlags = O_RDWR | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
// How often a file that others put there and remove meanwhile is tried again.
constexpr int kAttempts = 100;
constexpr std::size_t kLongestLine = 256;
constexpr std::size_t kLongestProgram = 64;

[[noreturn]] void fail(const std::string& what, int error) {
  throw std::runtime_error(what + ": " + std::generic_category().message(error));
}

bool isRoot() {
  return geteuid() == kRoot;
}

// Opens what is there; without a descriptor errno tells why.
Descriptor openExisting(const fs::path& path) {
  return Descriptor(::open(path.c_str(), kFlags));
}

Descriptor create(const fs::path& path) {
  Descriptor file(::open(path.c_str(), kFlags | O_CREAT | O_EXCL, kOwnersAlone));
  if (!file.isOpen() && errno != EEXIST) {
    fail("cannot make " + path.string(), errno);
  }
  return file;
}

struct stat statusOf(const Descriptor& file) {
  struct stat status {};
  if (::fstat(file.get(), &status) != 0) {
    throw std::system_error(errno, std::generic_category(), "cannot look at the flash lock");
  }
  return status;
}

bool isFileOf(const struct stat& status, uid_t owner) {
  return S_ISREG(status.st_mode) && status.st_uid == owner && status.st_nlink != 0;
}

// Under a second name the file may be something else's, and no lock at all. It is not made anew:
// one who could give it that name while the lock is held could then end the exclusion.
void refuseOtherNames(const fs::path& path, const struct stat& status) {
  if (status.st_nlink > 1) {
    throw std::runtime_error(path.string() + " has other names: have them removed");
  }
}

// Returns a name in the folder that nobody can have taken before.
fs::path makeName(const fs::path& path) {
  std::uint64_t number = 0;
  if (::getrandom(&number, sizeof(number), 0) != sizeof(number)) {
    fail("no random number for " + path.string(), errno);
  }
  return path.string() + utils::format(".%016llx", static_cast<unsigned long long>(number));
}

// Removes what a stranger made; a folder may have anything in it, and stays under its name.
void removeStranger(const fs::path& path) {
  if (::unlink(path.c_str()) != 0) {
    static_cast<void>(::rmdir(path.c_str()));
  }
}

void refuseOwner(const fs::path& path, const struct stat& status) {
  throw std::runtime_error(
      path.string() +
      (S_ISREG(status.st_mode)
           ? utils::format(" belongs to user %u", static_cast<unsigned>(status.st_uid))
           : std::string(" is no file")) +
      ": have it removed");
}

// Puts a new file of root's in the place of what a stranger made: whoever can make entries in the
// folder can make one of this name before root does. Returns no descriptor where another program of
// root has done it meanwhile. The new file is locked until it is known to stay, so that nobody
// takes it for the lock before; who waits for it finds it removed otherwise, and looks again.
Descriptor replaceStranger(const fs::path& path) {
  const fs::path name = makeName(path);
  Descriptor file = create(name);
  if (!file.isOpen() || ::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
    fail("cannot make " + name.string(), errno);
  }
  if (::renameat2(AT_FDCWD, name.c_str(), AT_FDCWD, path.c_str(), RENAME_EXCHANGE) != 0) {
    const int error = errno;
    static_cast<void>(::unlink(name.c_str()));
    if (error == ENOENT) {
      return {};
    }
    fail("cannot put a stranger's " + path.string() + " out of the way", error);
  }
  struct stat status {};
  if (::lstat(name.c_str(), &status) == 0 && isFileOf(status, kRoot)) {
    // Another program of root was faster: its file comes back.
    if (::renameat2(AT_FDCWD, name.c_str(), AT_FDCWD, path.c_str(), RENAME_EXCHANGE) != 0) {
      fail("cannot put " + path.string() + " back", errno);
    }
    static_cast<void>(::unlink(name.c_str()));
    return {};
  }
  removeStranger(name);
  if (::flock(file.get(), LOCK_UN) != 0) {
    fail("cannot unlock " + path.string(), errno);
  }
  return file;
}

// Opens a file of the effective user, or makes it.
Descriptor openOwn(const fs::path& path) {
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    Descriptor file = openExisting(path);
    const int error = errno;
    if (!file.isOpen() && error == ENOENT) {
      file = create(path);
      if (file.isOpen()) {
        return file;
      }
      continue;
    }
    struct stat status {};
    if (file.isOpen()) {
      status = statusOf(file);
      if (isFileOf(status, geteuid())) {
        refuseOtherNames(path, status);
        if ((status.st_mode & kOthers) != 0 &&
            ::fchmod(file.get(), status.st_mode & ~kOthers & ALLPERMS) != 0) {
          fail("cannot close " + path.string() + " to others", errno);
        }
        return file;
      }
      if (status.st_nlink == 0) {
        continue;  // removed since it was opened
      }
    }
    if (isRoot()) {
      Descriptor replacement = replaceStranger(path);
      if (replacement.isOpen()) {
        return replacement;
      }
    } else if (file.isOpen()) {
      refuseOwner(path, status);
    } else {
      fail("cannot open " + path.string(), error);
    }
  }
  throw std::runtime_error(path.string() + " is removed and made again all the time");
}

// Returns the machine's file for a user whom its group lets in, else no descriptor.
Descriptor openAsMember(const fs::path& path) {
  Descriptor file = openExisting(path);
  if (file.isOpen()) {
    const struct stat status = statusOf(file);
    if (isFileOf(status, kRoot) && (status.st_mode & kOthers) == 0) {
      refuseOtherNames(path, status);
      return file;
    }
  }
  return {};
}

void checkFolder(const fs::path& folder) {
  struct stat status {};
  if (::stat(folder.c_str(), &status) != 0) {
    if (errno != ENOENT || !isRoot()) {
      fail("cannot look at " + folder.string(), errno);
    }
    // As systems make it that have one.
    if (::mkdir(folder.c_str(), kAllWithStickyBit) != 0 && errno != EEXIST) {
      fail("cannot make " + folder.string(), errno);
    }
    if (::chmod(folder.c_str(), kAllWithStickyBit) != 0 || ::stat(folder.c_str(), &status) != 0) {
      fail("cannot make " + folder.string(), errno);
    }
  }
  if (!S_ISDIR(status.st_mode)) {
    fail("cannot use " + folder.string(), ENOTDIR);
  }
  const bool isOpenToOthers = (status.st_mode & (S_IWGRP | S_IWOTH)) != 0;
  if ((status.st_uid != kRoot && status.st_uid != geteuid()) ||
      (isOpenToOthers && (status.st_mode & S_ISVTX) == 0)) {
    throw std::runtime_error("others can remove files from " + folder.string() +
                             ": let root own it, with mode 1777");
  }
}

std::string nameOfUser(uid_t number) {
  std::vector<char> buffer(4096);
  passwd entry{};
  passwd* found = nullptr;
  if (::getpwuid_r(number, &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr) {
    return found->pw_name;
  }
  return std::to_string(number);
}

// What stands in a file may come from a program that went wrong, and ends on a terminal.
std::string toPlain(std::string text) {
  text.resize(std::min(text.size(), kLongestProgram));
  for (char& character : text) {
    if (character < ' ' || character > '~') {
      character = '?';
    }
  }
  return text;
}

std::string nameOfProgram() {
  return program_invocation_short_name;
}

std::optional<LockHolder> parseHolder(const std::string& line) {
  std::istringstream words(line);
  LockHolder holder;
  uid_t user = 0;
  std::int64_t since = 0;
  words >> holder.process >> user >> since;
  words.get();
  std::getline(words, holder.program);
  if (!words || holder.process <= 0 || holder.program.empty() || line.back() != '\n') {
    return std::nullopt;
  }
  holder.program = toPlain(holder.program);
  holder.user = toPlain(nameOfUser(user));
  holder.since = Moment(std::chrono::milliseconds(since));
  return holder;
}

}  // namespace

LockFile::LockFile(fs::path folder) : m_folder(std::move(folder)) {
  open();
}

void LockFile::open() {
  checkFolder(m_folder);
  m_path = m_folder / kName;
  m_file = isRoot() ? openOwn(m_path) : openAsMember(m_path);
  m_isMachines = m_file.isOpen();
  if (!m_isMachines) {
    m_path += utils::format(".%u", static_cast<unsigned>(geteuid()));
    m_file = openOwn(m_path);
  }
}

bool LockFile::tryLock(Moment now) {
  if (!m_file.isOpen() || !m_isMachines) {
    open();  // it failed the last time, or the machine's may let this user in by now
  }
  for (;;) {
    while (::flock(m_file.get(), LOCK_EX | LOCK_NB) != 0) {
      if (errno == EWOULDBLOCK) {
        if (statusOf(m_file).st_nlink != 0) {
          return false;
        }
        open();
      } else if (errno != EINTR) {
        throw std::system_error(errno, std::generic_category(), "cannot lock " + m_path.string());
      }
    }
    if (statusOf(m_file).st_nlink != 0) {
      writeHolder(now);
      return true;
    }
    // An administrator removed the file: everybody meets again at a new one.
    open();
  }
}

int LockFile::unlock() {
  static_cast<void>(::ftruncate(m_file.get(), 0));
  return ::flock(m_file.get(), LOCK_UN) == 0 ? 0 : errno;
}

std::optional<LockHolder> LockFile::readHolder() {
  std::array<char, kLongestLine> buffer{};
  const ssize_t count = ::pread(m_file.get(), buffer.data(), buffer.size(), 0);
  const std::string line(buffer.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
  // To look up the user's name each time would cost more than the wait.
  if (line != m_line) {
    m_line = line;
    m_holder = parseHolder(line);
  }
  return m_holder;
}

void LockFile::writeHolder(Moment now) {
  const auto since = std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch());
  const std::string line =
      utils::format("%d %u %lld %s\n", static_cast<int>(getpid()), static_cast<unsigned>(geteuid()),
                    static_cast<long long>(since.count()), toPlain(nameOfProgram()).c_str());
  if (::ftruncate(m_file.get(), 0) != 0 ||
      ::pwrite(m_file.get(), line.data(), line.size(), 0) != static_cast<ssize_t>(line.size())) {
    // Those who wait are told of "another program" then.
    static_cast<void>(::ftruncate(m_file.get(), 0));
  }
}

}  // namespace os
