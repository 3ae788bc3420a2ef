#include "http/Posix/SocketFile.h"

#include <cerrno>
#include <filesystem>
#include <iterator>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "platform/Posix/Descriptor.h"

namespace http {
namespace {

constexpr mode_t kFolderMode = 0755;
constexpr mode_t kEverybody = 0666;

[[noreturn]] void fail(int error, const std::string& what) {
  throw std::system_error(error, std::generic_category(), what);
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
  const std::string folder = std::filesystem::path(path).parent_path().string();
  // Whatever the umask is, other users have to find the socket in it.
  const bool isMade = ::mkdir(folder.c_str(), kFolderMode) == 0;
  if (isMade ? ::chmod(folder.c_str(), kFolderMode) != 0 : errno != EEXIST) {
    fail(errno, "the folder " + folder + " cannot be made");
  }
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) {
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
  if (::unlink(path.c_str()) != 0 && errno != ENOENT) {
    fail(errno, "what another server left there cannot be removed");
  }
}

SocketFile::SocketFile(std::string path) : m_path(std::move(path)) {
  struct stat status {};
  if (::chmod(m_path.c_str(), kEverybody) != 0 || ::lstat(m_path.c_str(), &status) != 0) {
    fail(errno, "it cannot be opened to all users");
  }
  m_device = status.st_dev;
  m_number = status.st_ino;
}

SocketFile::~SocketFile() {
  struct stat status {};
  if (::lstat(m_path.c_str(), &status) == 0 && status.st_dev == m_device &&
      status.st_ino == m_number) {
    ::unlink(m_path.c_str());
  }
}

}  // namespace http
