// A process whose parent has ended, and that may have become a child of this one: of process 1 of a
// container, or of a program that takes orphans in (PR_SET_CHILD_SUBREAPER).
//
// Somebody has to await its end, or its number is never free again. What is awaited is that very
// process, by a handle of the kernel's: its number may be another child's by then. Where the kernel
// has no such handles (before Linux 5.4), and where it is init's child, nothing is awaited. One
// thread at a time uses an object; buryOrphans() any.

#ifndef ORVEX_MIDAPI_KERNEL_ORPHAN_H_
#define ORVEX_MIDAPI_KERNEL_ORPHAN_H_

#include "platform/Posix/Descriptor.h"

namespace ma {

class Orphan {
 public:
  Orphan() = default;
  // Its parent has ended and been awaited, and it has not.
  explicit Orphan(int process);
  Orphan(Orphan&&) noexcept = default;
  Orphan& operator=(Orphan&&) noexcept = default;
  Orphan(const Orphan&) = delete;
  Orphan& operator=(const Orphan&) = delete;
  // Nobody wants to know of it any more. It may go on: buryOrphans() awaits its end.
  ~Orphan();

 private:
  platform::Descriptor m_handle;  // open where it is ours to await
};

// Awaits those that have ended by now, without waiting for others.
void buryOrphans() noexcept;

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_ORPHAN_H_
