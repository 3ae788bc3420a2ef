// What a process of its own asks of the kernel, where an answer may not come for minutes.
//
// A driver that is busy holds whoever asks it, and nobody can call that back. So a child process
// (see AskingChild.h) does it: it gets one errand after the other through a socket of packets, and
// replies in pieces. This is the child's side. It is run after a fork in a program with threads, so
// it makes system calls alone: it allocates nothing, locks nothing and calls nothing that does.

#ifndef ORVEX_MIDAPI_KERNEL_ERRANDS_H_
#define ORVEX_MIDAPI_KERNEL_ERRANDS_H_

#include <array>
#include <cstddef>
#include <cstdint>

namespace ma {

enum class Errand : std::uint32_t {
  Netlink = 1,  // bytes: a request to generic netlink; a piece for each datagram of the answer
  DriverInfo,   // a network interface's name; one piece, an ethtool_drvinfo
  Vpd,          // a path; the file up to the end tag of the VPD
  Rom,          // a path of sysfs; the option ROM, which is switched on for as long as it is read
  PlainFile,    // a path; the file
  // A LockHead and the path of a file, which is locked from now on, until the next one of these or
  // the child's end. Where somebody else has it for long the error is EALREADY, and a piece says
  // since when: seconds since 1970, an int64. What cannot be locked at all is not, without an
  // error.
  Lock,
};

inline constexpr std::size_t kMaxVpd = std::size_t{32} << 10;  // its address has 15 bits
inline constexpr std::size_t kMaxRom = std::size_t{16}
                                       << 20;  // what a ROM's address register takes

// How packets begin; bytes follow. Both sides are one program.
struct ErrandHead {
  Errand errand = Errand::Netlink;
};
struct LockHead {
  std::int64_t patience = 0;  // in nanoseconds: for how long one may have it who does not hang
};
struct ReplyHead {
  std::int64_t time = 0;   // of the steady clock, in nanoseconds
  std::int32_t error = 0;  // errno; of the last piece alone
  std::uint32_t isLast = 0;
};

// What the errands are done in; made before the fork. A path is shorter than PATH_MAX, a datagram
// of the kernel's no longer than 32 KiB.
struct ErrandRoom {
  alignas(
      ReplyHead) std::array<std::uint8_t, sizeof(ErrandHead) + sizeof(LockHead) + 4096 + 1> order{};
  alignas(ReplyHead) std::array<std::uint8_t, sizeof(ReplyHead) + 32768> reply{};
};

// Does what comes through the socket until its other end is closed.
void serveErrands(int socket, ErrandRoom& room) noexcept;

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_ERRANDS_H_
