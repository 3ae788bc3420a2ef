#include "midapi/Kernel/Errands.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <linux/ethtool.h>
#include <linux/netlink.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <span>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "platform/Posix/Descriptor.h"

namespace ma {
namespace {

using platform::Descriptor;

// Hardware gives four bytes of its VPD at a time, and takes up to a millisecond for them.
constexpr std::size_t kVpdStep = 64;
constexpr int kMostDatagrams = 64;

template <class Call>
auto retry(Call call) {
  for (;;) {
    const auto result = call();
    if (result >= 0 || errno != EINTR) {
      return result;
    }
  }
}

std::int64_t steadyTime() {
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  return std::int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

// Where replies go. Once the other end is closed there is nothing more to do.
class Outlet {
 public:
  Outlet(int socket, ErrandRoom& room) : m_socket(socket), m_room(room) {}

  [[nodiscard]] std::span<std::uint8_t> space() const {
    return std::span(m_room.reply).subspan(sizeof(ReplyHead));
  }
  // Sends what stands in the space.
  [[nodiscard]] bool sendPiece(std::size_t size) { return send({steadyTime(), 0, 0}, size); }
  void sendLast(int error) { static_cast<void>(send({steadyTime(), error, 1}, 0)); }

 private:
  bool send(const ReplyHead& head, std::size_t size) {
    std::memcpy(m_room.reply.data(), &head, sizeof head);
    return retry([&] {
             return ::send(m_socket, m_room.reply.data(), sizeof head + size, MSG_NOSIGNAL);
           }) >= 0;
  }

  const int m_socket;
  ErrandRoom& m_room;
};

// A text of the order, which ends with a zero.
const char* textOf(std::span<const std::uint8_t> bytes) {
  return reinterpret_cast<const char*>(bytes.data());
}

Descriptor openNetlink() {
  return Descriptor(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_GENERIC));
}

// The kernel has answered when it has taken the request.
int askNetlink(std::span<const std::uint8_t> request, Outlet& outlet) {
  const Descriptor socket = openNetlink();
  sockaddr_nl kernel{};
  kernel.nl_family = AF_NETLINK;
  const auto* const address = reinterpret_cast<const sockaddr*>(&kernel);
  // An acknowledgement without the request leaves more room for words; without them it is one, too.
  const int on = 1;
  if (socket.isOpen()) {
    ::setsockopt(socket.get(), SOL_NETLINK, NETLINK_EXT_ACK, &on, sizeof on);
    ::setsockopt(socket.get(), SOL_NETLINK, NETLINK_CAP_ACK, &on, sizeof on);
  }
  if (!socket.isOpen() || ::bind(socket.get(), address, sizeof kernel) != 0 ||
      retry([&] {
        return ::sendto(socket.get(), request.data(), request.size(), 0, address, sizeof kernel);
      }) < 0) {
    return errno;
  }
  for (int i = 0; i < kMostDatagrams; ++i) {
    const std::span<std::uint8_t> space = outlet.space();
    const ssize_t size = ::recv(socket.get(), space.data(), space.size(), MSG_DONTWAIT);
    if (size < 0 || !outlet.sendPiece(static_cast<std::size_t>(size))) {
      return size < 0 && errno != EAGAIN ? errno : 0;
    }
  }
  return 0;
}

int askDriverInfo(std::span<const std::uint8_t> interface, Outlet& outlet) {
  ethtool_drvinfo info{};
  info.cmd = ETHTOOL_GDRVINFO;
  ifreq request{};
  std::strncpy(request.ifr_name, textOf(interface), sizeof request.ifr_name - 1);
  request.ifr_data = reinterpret_cast<char*>(&info);
  const Descriptor socket = openNetlink();  // any socket will do
  if (!socket.isOpen() || ::ioctl(socket.get(), SIOCETHTOOL, &request) != 0) {
    return errno;
  }
  std::memcpy(outlet.space().data(), &info, sizeof info);
  static_cast<void>(outlet.sendPiece(sizeof info));
  return 0;
}

// Where the list of resources in a VPD ends, as far as it was seen.
class VpdWalk {
 public:
  // Takes in the next byte, and returns whether there is another one to be read.
  [[nodiscard]] bool wantsMoreAfter(std::uint8_t byte) {
    constexpr std::uint8_t kEnd = 0x0F;
    switch (m_next) {
      case Next::Tag:
        if ((byte & 0x80) != 0) {
          // What was never written is no VPD, and is 32 KiB of that.
          m_next = Next::LengthLow;
          return byte != 0xFF;
        }
        m_left = byte & 7U;
        m_next = m_left == 0 ? Next::Tag : Next::Data;
        return byte >> 3 != kEnd && byte != 0;
      case Next::LengthLow:
        m_left = byte;
        m_next = Next::LengthHigh;
        return true;
      case Next::LengthHigh:
        m_left |= static_cast<unsigned>(byte) << 8;
        m_next = m_left == 0 ? Next::Tag : Next::Data;
        return true;
      case Next::Data:
        m_next = --m_left == 0 ? Next::Tag : Next::Data;
        return true;
    }
    return false;
  }

 private:
  enum class Next { Tag, LengthLow, LengthHigh, Data };

  Next m_next = Next::Tag;
  unsigned m_left = 0;  // bytes of the resource
};

// Reads a file from its start, `step` bytes at a time, and sends them. `wantsMore` looks at each
// piece. Returns errno.
template <class Visitor>
int readFile(int file, std::size_t step, std::size_t most, Outlet& outlet, Visitor wantsMore) {
  const std::span<std::uint8_t> space = outlet.space();
  for (std::size_t done = 0;;) {
    const std::size_t wanted = std::min({step, space.size(), most - done});
    const ssize_t count = retry([&] { return ::read(file, space.data(), wanted); });
    if (count < 0) {
      return errno;
    }
    const auto size = static_cast<std::size_t>(count);
    done += size;
    if (size == 0 || !outlet.sendPiece(size) || !wantsMore(space.first(size)) || done == most) {
      return 0;
    }
  }
}

int readVpd(std::span<const std::uint8_t> path, Outlet& outlet) {
  const Descriptor file(retry([&] { return ::open(textOf(path), O_RDONLY | O_CLOEXEC); }));
  VpdWalk walk;
  return file.isOpen() ? readFile(file.get(), kVpdStep, kMaxVpd, outlet,
                                  [&walk](std::span<const std::uint8_t> bytes) {
                                    return std::all_of(bytes.begin(), bytes.end(),
                                                       [&walk](std::uint8_t byte) {
                                                         return walk.wantsMoreAfter(byte);
                                                       });
                                  })
                       : errno;
}

int readAll(int file, Outlet& outlet) {
  return readFile(file, kMaxRom, kMaxRom, outlet,
                  [](std::span<const std::uint8_t>) { return true; });
}

int readPlainFile(std::span<const std::uint8_t> path, Outlet& outlet) {
  const Descriptor file(retry([&] { return ::open(textOf(path), O_RDONLY | O_CLOEXEC); }));
  return file.isOpen() ? readAll(file.get(), outlet) : errno;
}

// The kernel takes two bytes for the word that switches the ROM off, and whatever else for the one
// that switches it on.
int readRom(std::span<const std::uint8_t> path, Outlet& outlet) {
  const Descriptor file(retry([&] { return ::open(textOf(path), O_RDWR | O_CLOEXEC); }));
  if (!file.isOpen() || ::pwrite(file.get(), "1", 1, 0) < 0) {
    return errno;
  }
  const int error = readAll(file.get(), outlet);
  static_cast<void>(::pwrite(file.get(), "0\n", 2, 0));
  return error;
}

constexpr std::int64_t kBillion = 1'000'000'000;
// Whoever has just locked the file has not said so yet.
constexpr std::int64_t kLeastWait = 20'000'000;
constexpr std::int64_t kPause = 2'000'000;

int tryLock(int file, std::int64_t patience, Outlet& outlet) {
  for (std::int64_t waited = 0;; waited += kPause) {
    if (::flock(file, LOCK_EX | LOCK_NB) == 0) {
      static_cast<void>(::futimens(file, nullptr));
      return 0;
    }
    if (errno != EWOULDBLOCK && errno != EINTR) {
      return 0;
    }
    struct stat state {};
    timespec now{};
    if (::fstat(file, &state) != 0 || ::clock_gettime(CLOCK_REALTIME, &now) != 0) {
      return 0;
    }
    const std::int64_t since = state.st_mtim.tv_sec;
    const std::int64_t age = (now.tv_sec - since) * kBillion + now.tv_nsec - state.st_mtim.tv_nsec;
    if (waited >= patience || (waited >= kLeastWait && age >= patience)) {
      std::memcpy(outlet.space().data(), &since, sizeof since);
      static_cast<void>(outlet.sendPiece(sizeof since));
      return EALREADY;
    }
    const timespec pause{0, kPause};
    ::nanosleep(&pause, nullptr);
  }
}

int takeLock(std::span<const std::uint8_t> bytes, Descriptor& held, Outlet& outlet) {
  { const Descriptor before = std::move(held); }
  LockHead head;
  if (bytes.size() <= sizeof head) {
    return EINVAL;
  }
  std::memcpy(&head, bytes.data(), sizeof head);
  constexpr int kFlags = O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
  Descriptor file(retry([&] { return ::open(textOf(bytes.subspan(sizeof head)), kFlags, 0600); }));
  const int error = file.isOpen() ? tryLock(file.get(), head.patience, outlet) : 0;
  if (error == 0) {
    held = std::move(file);
  }
  return error;
}

int runErrand(Errand errand, std::span<const std::uint8_t> bytes, Descriptor& lock,
              Outlet& outlet) {
  switch (errand) {
    case Errand::Netlink:
      return askNetlink(bytes, outlet);
    case Errand::DriverInfo:
      return askDriverInfo(bytes, outlet);
    case Errand::Vpd:
      return readVpd(bytes, outlet);
    case Errand::Rom:
      return readRom(bytes, outlet);
    case Errand::PlainFile:
      return readPlainFile(bytes, outlet);
    case Errand::Lock:
      return takeLock(bytes, lock, outlet);
  }
  return ENOSYS;
}

}  // namespace

void serveErrands(int socket, ErrandRoom& room) noexcept {
  Outlet outlet(socket, room);
  Descriptor lock;
  for (;;) {
    const std::size_t most = room.order.size() - 1;
    const ssize_t count = retry([&] { return ::recv(socket, room.order.data(), most, 0); });
    if (count < static_cast<ssize_t>(sizeof(ErrandHead))) {
      return;
    }
    const auto size = static_cast<std::size_t>(count);
    room.order[size] = 0;
    ErrandHead head;
    std::memcpy(&head, room.order.data(), sizeof head);
    outlet.sendLast(runErrand(head.errand, std::span(room.order).first(size).subspan(sizeof head),
                              lock, outlet));
  }
}

}  // namespace ma
