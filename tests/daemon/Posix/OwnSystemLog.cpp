#include "tests/daemon/Posix/OwnSystemLog.h"

#include <cstring>
#include <fstream>
#include <future>
#include <sched.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <vector>

#include "platform/Posix/Descriptor.h"

namespace test {
namespace {

constexpr const char* kFiller = "filler";

// Has a path show a file of another one.
bool show(const std::filesystem::path& file, const std::filesystem::path& at) {
  std::ofstream(at).close();
  return ::mount(file.c_str(), at.c_str(), nullptr, MS_BIND, nullptr) == 0;
}

}  // namespace

OwnSystemLog::OwnSystemLog() = default;

bool OwnSystemLog::run(const std::function<void()>& start) const {
  // What a thread sees is its own, and that of the processes that it starts.
  const auto startElsewhere = [&] {
    if (::unshare(CLONE_NEWNS) != 0 || !replaceDevices()) {
      return false;
    }
    start();
    return true;
  };
  return std::async(std::launch::async, startElsewhere).get();
}

bool OwnSystemLog::replaceDevices() const {
  const std::filesystem::path devices = m_directory.path() / "devices";
  std::filesystem::create_directory(devices);
  if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
      ::mount("devices", devices.c_str(), "tmpfs", 0, nullptr) != 0) {
    return false;
  }
  for (const char* const name : {"null", "zero", "full", "random", "urandom"}) {
    if (!show(std::filesystem::path("/dev") / name, devices / name)) {
      return false;
    }
  }
  return show(m_path, devices / "log") &&
         ::mount(devices.c_str(), "/dev", nullptr, MS_BIND | MS_REC, nullptr) == 0;
}

void OwnSystemLog::fill() const {
  sockaddr_un place{};
  place.sun_family = AF_UNIX;
  m_path.native().copy(std::data(place.sun_path), sizeof(place.sun_path) - 1);
  // A sender has a bound of its own, which may be reached before the log's.
  std::vector<platform::Descriptor> senders;
  for (bool isTaken = true; isTaken;) {
    const int sender = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    senders.emplace_back(sender);
    isTaken = false;
    while (::sendto(sender, kFiller, std::strlen(kFiller), 0,
                    reinterpret_cast<const sockaddr*>(&place), sizeof place) >= 0) {
      isTaken = true;
    }
  }
}

std::string OwnSystemLog::takeAll() const {
  std::string all;
  for (std::string text = m_socket.receive(); !text.empty(); text = m_socket.receive()) {
    if (text != kFiller) {
      all += text + '\n';
    }
  }
  return all;
}

}  // namespace test
