#include "http/Posix/SocketFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <filesystem>
#include <iterator>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

#include "http/Endpoint.h"
#include "http/ServerOptions.h"

namespace http {
namespace {

constexpr mode_t kFolderMode = 0755;
constexpr mode_t kEverybody = 0666;

[[noreturn]] void fail(int error, const std::string& what) {
  throw std::system_error(error, std::generic_category(), what);
}

std::string nameOf(const std::string& path) {
  return std::filesystem::path(path).filename().string();
}

struct stat demandStatus(const platform::Descriptor& file, const std::string& what) {
  struct stat status {};
  if (::fstat(file.get(), &status) != 0) {
    fail(errno, what);
  }
  return status;
}

// Changes the permissions of what was opened by its path alone: the name may be another one's by
// now.
bool setMode(const platform::Descriptor& file, mode_t mode) {
  return ::chmod(("/proc/self/fd/" + std::to_string(file.get())).c_str(), mode) == 0;
}

platform::Descriptor openPath(int folder, const std::string& path, int flags) {
  return platform::Descriptor(::openat(folder, path.c_str(), O_PATH | O_CLOEXEC | flags));
}

// The way from the root of the file system to a folder. Each folder and each link on it is judged
// when it is gone through, since its owner decides what is behind it.
class Way {
 public:
  // `socket` is the path that faults name.
  explicit Way(const std::string& socket)
      : m_subject("Cannot listen on " + (kLocalScheme + socket) + ": the ") {
    goToRoot();
  }

  // Goes on from here; from the root where the path is absolute. Throws SetupFault for what others
  // could change, std::system_error for what cannot be opened.
  void go(const std::filesystem::path& path) {
    // The name to take next is the last one.
    std::vector<std::filesystem::path> names;
    push(names, path);
    for (unsigned links = 0; !names.empty();) {
      const std::filesystem::path name = std::move(names.back());
      names.pop_back();
      if (name.is_absolute()) {
        goToRoot();
      } else if (const std::filesystem::path target = enter(name); !target.empty()) {
        if (++links > kMostLinks) {
          fail(ELOOP, unopened(m_path / name));
        }
        push(names, target);
      }
    }
  }

  // Makes a folder here and goes into it; into the one that is there already, perhaps.
  void make(const std::filesystem::path& name) {
    const std::string unmade = "the folder " + (m_path / name).string() + " cannot be made";
    if (::mkdirat(m_folder.get(), name.c_str(), kFolderMode) != 0) {
      if (errno != EEXIST) {
        fail(errno, unmade);
      }
      go(name);
      return;
    }
    if (!enter(name).empty()) {
      fail(EEXIST, unmade);  // somebody else has put a link in its place
    }
    // Whatever the umask is, other users have to find the socket in it.
    if (!setMode(m_folder, kFolderMode)) {
      fail(errno, unmade);
    }
  }

  [[nodiscard]] platform::Descriptor take() { return std::move(m_folder); }

 private:
  // As many as the system goes through.
  static constexpr unsigned kMostLinks = 40;

  static std::string unopened(const std::filesystem::path& folder) {
    return "the folder " + folder.string() + " cannot be opened";
  }

  static void push(std::vector<std::filesystem::path>& names, const std::filesystem::path& path) {
    const std::vector<std::filesystem::path> parts(path.begin(), path.end());
    std::copy_if(parts.rbegin(), parts.rend(), std::back_inserter(names),
                 [](const std::filesystem::path& part) { return !part.empty() && part != "."; });
  }

  void goToRoot() {
    m_path = "/";
    m_folder = openPath(AT_FDCWD, m_path, O_DIRECTORY);
    if (!m_folder.isOpen()) {
      fail(errno, unopened(m_path));
    }
    demandSafe(demandStatus(m_folder, unopened(m_path)));
  }

  // Goes into a folder. Returns where it leads to if it is a link, and stays then.
  [[nodiscard]] std::filesystem::path enter(const std::filesystem::path& name) {
    // Has the system mount what it mounts at its first use.
    platform::Descriptor next = openPath(m_folder.get(), name, O_NOFOLLOW | O_DIRECTORY);
    if (!next.isOpen()) {
      const int error = errno;
      if (error != ENOTDIR && error != ELOOP) {
        fail(error, unopened(m_path / name));
      }
      return readLink(name);
    }
    m_path /= name;
    m_folder = std::move(next);
    demandSafe(demandStatus(m_folder, unopened(m_path)));
    return {};
  }

  [[nodiscard]] std::filesystem::path readLink(const std::filesystem::path& name) const {
    const std::string what = unopened(m_path / name);
    const platform::Descriptor link = openPath(m_folder.get(), name, O_NOFOLLOW);
    if (!link.isOpen()) {
      fail(errno, what);
    }
    const struct stat status = demandStatus(link, what);
    if (!S_ISLNK(status.st_mode)) {
      fail(ENOTDIR, what);
    }
    if (!isTrusted(status.st_uid)) {
      throw SetupFault(m_subject + "link '" + (m_path / name).string() + "' belongs to the user " +
                       std::to_string(status.st_uid) +
                       ", who could lead it to a socket of his own. Choose another path.");
    }
    std::array<char, PATH_MAX> target{};
    const ssize_t size = ::readlinkat(link.get(), "", target.data(), target.size());
    if (size <= 0) {
      fail(size < 0 ? errno : ENOENT, what);
    }
    return std::string(target.data(), static_cast<std::size_t>(size));
  }

  void demandSafe(const struct stat& folder) const {
    const std::string subject = m_subject + "folder '" + m_path.string() + "' ";
    if (!isTrusted(folder.st_uid)) {
      throw SetupFault(subject + "belongs to the user " + std::to_string(folder.st_uid) +
                       ", who could put a socket of his own there. Choose another path.");
    }
    const bool isOthers = (folder.st_mode & (S_IWGRP | S_IWOTH)) != 0;
    if (isOthers && (folder.st_mode & S_ISVTX) == 0) {
      throw SetupFault(subject +
                       "can be changed by others than its owner, who could put sockets of "
                       "their own there. Choose another path, or run: chmod go-w " +
                       m_path.string());
    }
  }

  static bool isTrusted(uid_t user) { return user == 0 || user == ::geteuid(); }

  const std::string m_subject;
  std::filesystem::path m_path;
  platform::Descriptor m_folder;
};

std::filesystem::path folderOf(const std::string& path) {
  return std::filesystem::absolute(path).parent_path();
}

// Returns the folder of a socket, which has to be safe.
platform::Descriptor openFolder(const std::string& path) {
  Way way(path);
  way.go(folderOf(path));
  return way.take();
}

// Returns the folder of a socket, made where it is missing.
platform::Descriptor makeFolder(const std::string& path) {
  const std::filesystem::path folder = folderOf(path);
  Way way(path);
  way.go(folder.parent_path());
  if (folder.has_filename()) {
    way.make(folder.filename());
  }
  return way.take();
}

// Returns whether a server takes connections there.
bool isServed(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof(address.sun_path)) {
    fail(ENAMETOOLONG, "the path of a socket has " + std::to_string(sizeof(address.sun_path) - 1) +
                           " characters at most");
  }
  path.copy(std::data(address.sun_path), path.size());
  const platform::Descriptor client(
      ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!client.isOpen()) {
    fail(errno, "no socket can be made");
  }
  return ::connect(client.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) ==
             0 ||
         errno != ECONNREFUSED;
}

}  // namespace

void SocketFile::makeWay(const std::string& path) {
  const platform::Descriptor folder = makeFolder(path);
  const std::string name = nameOf(path);
  struct stat status {};
  if (::fstatat(folder.get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
    if (errno != ENOENT) {
      fail(errno, "it cannot be looked at");
    }
    return;
  }
  if (!S_ISSOCK(status.st_mode)) {
    fail(EEXIST, "what is there is no socket");
  }
  if (isServed(path)) {
    fail(EADDRINUSE, "another server listens there");
  }
  if (::unlinkat(folder.get(), name.c_str(), 0) != 0 && errno != ENOENT) {
    fail(errno, "what another server left there cannot be removed");
  }
}

SocketFile::SocketFile(const std::string& path) : m_folder(openFolder(path)), m_name(nameOf(path)) {
  const std::string unopened = "it cannot be opened to all users";
  const platform::Descriptor file = openPath(m_folder.get(), m_name, O_NOFOLLOW);
  if (!file.isOpen()) {
    fail(errno, unopened);
  }
  const struct stat status = demandStatus(file, unopened);
  if (!S_ISSOCK(status.st_mode) || status.st_uid != ::geteuid()) {
    fail(EEXIST, "what is there is another's");
  }
  if (!setMode(file, kEverybody)) {
    fail(errno, unopened);
  }
  m_device = status.st_dev;
  m_number = status.st_ino;
}

SocketFile::~SocketFile() {
  struct stat status {};
  if (::fstatat(m_folder.get(), m_name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
      status.st_dev == m_device && status.st_ino == m_number) {
    ::unlinkat(m_folder.get(), m_name.c_str(), 0);
  }
}

}  // namespace http
