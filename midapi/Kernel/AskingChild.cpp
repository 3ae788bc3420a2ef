#include "midapi/Kernel/AskingChild.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>
#include <memory>
#include <optional>
#include <poll.h>
#include <string>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "midapi/Kernel/BlockedSignals.h"

namespace ma {
namespace {

using platform::Descriptor;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

// No errand takes more.
constexpr std::size_t kMostBytes = 2 * kMaxRom;
constexpr milliseconds kNone{0};
constexpr steady_clock::duration kNoTime{0};
// For a child that gets no processor.
constexpr std::chrono::seconds kLongestPatience{5};
// As many times as for a piece it is waited for all of them.
constexpr int kMostPatience = 10;

// What the child's parent says of it.
struct Birth {
  int process = 0;
  int error = 0;
};

[[noreturn]] void fail(const char* tried) {
  throw std::system_error(errno, std::generic_category(), tried);
}

// ---- in the child: system calls alone

void closeFrom(unsigned first) {
  if (::syscall(SYS_close_range, first, ~0U, 0U) == 0) {
    return;
  }
  rlimit open{};
  constexpr rlim_t kMost = rlim_t{1} << 20;
  const rlim_t end =
      ::getrlimit(RLIMIT_NOFILE, &open) == 0 ? std::min(open.rlim_cur, kMost) : kMost;
  for (rlim_t number = first; number < end; ++number) {
    ::close(static_cast<int>(number));
  }
}

void resetSignals() {
  struct sigaction standard {};
  standard.sa_handler = SIG_DFL;
  for (int signal = 1; signal < NSIG; ++signal) {
    ::sigaction(signal, &standard, nullptr);
  }
  sigset_t none;
  ::sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

// A child that is held up keeps nothing busy: no socket, no terminal, no file system.
[[noreturn]] void beTheChild(int socket, ErrandRoom& room) {
  if (::dup2(socket, 0) != 0) {
    ::_exit(1);
  }
  closeFrom(1);
  static_cast<void>(::chdir("/"));
  ::prctl(PR_SET_NAME, "quorvel-asks");
  resetSignals();
  serveErrands(0, room);
  ::_exit(0);
}

// Its parent, which ends at once: init takes the child over, and buries it.
[[noreturn]] void beTheParent(int socket, ErrandRoom& room, const Forks& forks) {
  const int child = forks.inChild();
  if (child == 0) {
    beTheChild(socket, room);
  }
  // The exit status may be somebody else's to look at; the socket is ours.
  const Birth birth{child, child < 0 ? errno : 0};
  static_cast<void>(::send(socket, &birth, sizeof birth, MSG_NOSIGNAL));
  ::_exit(0);
}

// ---- here

Birth awaitParent(int process, int socket) {
  while (::waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
  }
  Birth birth;
  const bool isTold = ::recv(socket, &birth, sizeof birth, MSG_DONTWAIT) == sizeof birth;
  return isTold ? birth : Birth{-1, ECANCELED};
}

// Returns whether the kernel has put a process to sleep, and not only aside.
bool isAsleep(int process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/stat");
  std::string line;
  std::getline(file, line);
  // Behind the name, which may hold anything: ") S ".
  const std::size_t end = line.rfind(") ");
  const char state = end != std::string::npos && end + 2 < line.size() ? line[end + 2] : 'S';
  return state != 'R' && state != 'T';
}

// Returns false when none comes in time.
bool awaitPacket(int socket, milliseconds patience) {
  const auto end = steady_clock::now() + patience;
  for (;;) {
    const auto left = std::chrono::ceil<milliseconds>(std::max(end - steady_clock::now(), kNoTime));
    pollfd awaited{socket, POLLIN, 0};
    const int ready = ::poll(&awaited, 1, static_cast<int>(left.count()));
    if (ready >= 0 || errno != EINTR) {
      return ready != 0;
    }
  }
}

}  // namespace

std::vector<std::uint8_t> ErrandReply::bytes() const {
  std::size_t size = 0;
  for (const auto& piece : pieces) {
    size += piece.size();
  }
  std::vector<std::uint8_t> all;
  all.reserve(size);
  for (const auto& piece : pieces) {
    all.insert(all.end(), piece.begin(), piece.end());
  }
  return all;
}

AskingChild::AskingChild(const Forks& forks) {
  const auto room = std::make_unique<ErrandRoom>();
  int ends[2];
  if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) {
    fail("cannot make a socket for a child process");
  }
  m_socket = Descriptor(ends[0]);
  const Descriptor its(ends[1]);
  int process = 0;
  {
    // No handler of this program runs between a fork and the child's own settings.
    const BlockedSignals blocked;
    process = forks.here();
    if (process == 0) {
      beTheParent(its.get(), *room, forks);
    }
  }
  if (process < 0) {
    fail("cannot start a child process");
  }
  const Birth birth = awaitParent(process, m_socket.get());
  if (birth.error != 0) {
    errno = birth.error;
    fail("cannot start a child process");
  }
  m_process = birth.process;
  m_orphan = Orphan(m_process);
}

void AskingChild::send(Errand errand, std::span<const std::uint8_t> bytes) {
  m_reply = {};
  m_size = 0;
  const ErrandHead head{errand};
  std::vector<std::uint8_t> packet(sizeof head + bytes.size());
  std::memcpy(packet.data(), &head, sizeof head);
  std::copy(bytes.begin(), bytes.end(), packet.begin() + sizeof head);
  // The child waits for it, so there is room.
  const bool isSent = ::send(m_socket.get(), packet.data(), packet.size(),
                             MSG_NOSIGNAL | MSG_DONTWAIT) == static_cast<ssize_t>(packet.size());
  m_state = isSent ? State::Waiting : State::Ended;
}

void AskingChild::dismiss() {
  ::shutdown(m_socket.get(), SHUT_WR);
}

AskingChild::State AskingChild::await(milliseconds patience) {
  auto lastSign = steady_clock::now();
  std::optional<steady_clock::time_point> end;  // from the first piece on
  bool isLastLook = patience == kNone;
  while (m_state == State::Waiting) {
    if (awaitPacket(m_socket.get(), isLastLook ? kNone : patience)) {
      m_state = receive();
      lastSign = steady_clock::now();
      isLastLook = patience == kNone;
      if (!end) {
        end = lastSign + kMostPatience * patience;
      } else if (!isLastLook && lastSign >= *end) {
        break;
      }
    } else if (isLastLook) {
      break;
    } else {
      // It may have replied before it went to sleep.
      isLastLook = isAsleep(m_process) || steady_clock::now() - lastSign >= kLongestPatience;
    }
  }
  return m_state;
}

AskingChild::State AskingChild::receive() {
  m_packet.resize(sizeof(ErrandRoom::reply));
  const ssize_t count = ::recv(m_socket.get(), m_packet.data(), m_packet.size(), MSG_DONTWAIT);
  if (count < 0 && (errno == EAGAIN || errno == EINTR)) {
    return State::Waiting;
  }
  ReplyHead head;
  if (count < static_cast<ssize_t>(sizeof head)) {
    return State::Ended;
  }
  std::memcpy(&head, m_packet.data(), sizeof head);
  if (head.isLast != 0) {
    m_reply.error = head.error;
    m_reply.time = steady_clock::time_point(std::chrono::nanoseconds(head.time));
    return State::Replied;
  }
  m_size += static_cast<std::size_t>(count);
  m_reply.pieces.emplace_back(m_packet.begin() + sizeof head, m_packet.begin() + count);
  return m_size <= kMostBytes ? State::Waiting : State::Ended;
}

}  // namespace ma
