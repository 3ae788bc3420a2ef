#include "http/Posix/SocketFile.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <iterator>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <system_error>
#include <unistd.h>

#include "http/Endpoint.h"
#include "http/ServerOptions.h"

namespace http {
namespace {

constexpr mode_t kFolderMode = 0755;
constexpr mode_t kEverybody = 0666;

[[noreturn]] void fail(int error, const std::string& what) {
  throw std::system_error(error, std::generic_category(), what);
}

std::string folderOf(const std::string& path) {
  return std::filesystem::path(path).parent_path().string();
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

// Throws SetupFault for a folder in which others could replace a file.
void demandSafe(const struct stat& folder, const std::string& path) {
  const std::string subject =
      "Cannot listen on " + (kLocalScheme + path) + ": the folder '" + folderOf(path) + "' ";
  if (folder.st_uid != 0 && folder.st_uid != ::geteuid()) {
    throw SetupFault(subject + "belongs to the user " + std::to_string(folder.st_uid) +
                     ", who could put a socket of his own there. Choose another path.");
  }
  const bool isOthers = (folder.st_mode & (S_IWGRP | S_IWOTH)) != 0;
  if (isOthers && (folder.st_mode & S_ISVTX) == 0) {
    throw SetupFault(subject +
                     "can be changed by others than its owner, who could put sockets of "
                     "their own there. Choose another path, or run: chmod go-w " +
                     folderOf(path));
  }
}

// Returns the folder of a socket, which has to be safe.
platform::Descriptor openFolder(const std::string& path, int flags) {
  const std::string unopened = "the folder " + folderOf(path) + " cannot be opened";
  platform::Descriptor folder = openPath(AT_FDCWD, folderOf(path), O_DIRECTORY | flags);
  if (!folder.isOpen()) {
    fail(errno, unopened);
  }
  demandSafe(demandStatus(folder, unopened), path);
  return folder;
}

// Returns the folder of a socket, made where it is missing.
platform::Descriptor makeFolder(const std::string& path) {
  const std::string name = folderOf(path);
  const std::string unmade = "the folder " + name + " cannot be made";
  if (::mkdir(name.c_str(), kFolderMode) != 0) {
    if (errno != EEXIST) {
      fail(errno, unmade);
    }
    return openFolder(path, 0);
  }
  platform::Descriptor folder = openFolder(path, O_NOFOLLOW);
  // Whatever the umask is, other users have to find the socket in it.
  if (!setMode(folder, kFolderMode)) {
    fail(errno, unmade);
  }
  return folder;
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

SocketFile::SocketFile(const std::string& path)
    : m_folder(openFolder(path, 0)), m_name(nameOf(path)) {
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
