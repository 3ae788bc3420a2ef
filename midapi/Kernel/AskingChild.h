// A child process that asks the kernel, so that nobody here has to wait for an answer.
//
// It cannot be killed while the kernel holds it. It ends when it is dismissed, or its owner is
// gone, as soon as the kernel lets it go. The child has none of the process's open files, no
// handlers of signals and no other threads, and is nobody's child: a program that waits for
// children of its own does not meet it, and it leaves no zombie (of a process that takes orphans in
// it becomes one: see Orphan.h). One thread at a time uses an
// object.

#ifndef ORVEX_MIDAPI_KERNEL_ASKINGCHILD_H_
#define ORVEX_MIDAPI_KERNEL_ASKINGCHILD_H_

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <unistd.h>
#include <vector>

#include "midapi/Kernel/Errands.h"
#include "midapi/Kernel/Orphan.h"
#include "platform/Posix/Descriptor.h"

namespace ma {

// How processes are made; a test lets it fail, or counts them.
struct Forks {
  int (*here)() = ::fork;
  int (*inChild)() = ::_Fork;  // which is nothing but the system call
};

// What came of an errand.
struct ErrandReply {
  int error = 0;  // errno
  std::vector<std::vector<std::uint8_t>> pieces;
  std::chrono::steady_clock::time_point time;  // when the kernel had answered

  [[nodiscard]] std::vector<std::uint8_t> bytes() const;
};

class AskingChild {
 public:
  enum class State {
    Waiting,  // the kernel has not answered
    Replied,
    Ended,  // the child is dead
  };

  // Throws std::system_error where no process can be started.
  explicit AskingChild(const Forks& forks);

  // Begins an errand; the one before has been replied to.
  void send(Errand errand, std::span<const std::uint8_t> bytes);

  // Waits for the reply, no longer than `patience` after it began and after each piece, and ten
  // times as long for the pieces after the first; some seconds where the kernel does not hold the
  // child, and the machine has not let it run.
  [[nodiscard]] State await(std::chrono::milliseconds patience);

  // This was its last errand: it ends when the kernel lets it go. The reply can be awaited still.
  void dismiss();

  // Returns what the last errand was replied to.
  [[nodiscard]] const ErrandReply& reply() const { return m_reply; }

 private:
  // Takes in one packet.
  [[nodiscard]] State receive();

  platform::Descriptor m_socket;
  Orphan m_orphan;
  int m_process = 0;
  State m_state = State::Waiting;
  ErrandReply m_reply;
  std::size_t m_size = 0;  // of the pieces
  std::vector<std::uint8_t> m_packet;
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_ASKINGCHILD_H_
