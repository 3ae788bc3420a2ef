// The file whose lock is the machine's flash lock, and who holds it.
//
// The lock is the kernel's own (flock): nobody can raise it, it ends with its holder, and only who
// can open the file can take it. So the file decides who takes part:
//
//   RavlApplySemaphore       root's, and of those whom its group lets in: the programs that write
//                            the machine's adapters. Opened to nobody else; what another user put
//                            there is replaced by root.
//   RavlApplySemaphore.UID   of a user who may not open that one, for the programs of that user.
//
// The folder must be root's or the user's own, and sticky where others can write to it, so that
// nobody can remove what is another's. In the file stands who holds the lock, for those who wait:
// the process, the user's number, since when (milliseconds of the steady clock) and the program. A
// disk that is full, or a want of memory, costs that line, not the lock.
//
// One object is used by one thread at a time.

#ifndef ORVEX_OS_POSIX_LOCKFILE_H_
#define ORVEX_OS_POSIX_LOCKFILE_H_

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>

#include "Os/OSLocker.h"
#include "Utils/Export.h"
#include "platform/Posix/Descriptor.h"

namespace os {

class ORVEX_CORE_API LockFile {
 public:
  static constexpr const char* kName = "RavlApplySemaphore";

  // Opens the file that the effective user takes part by, or makes it. Throws std::runtime_error,
  // which says what stands in the way: "/run/lock/RavlApplySemaphore.33 belongs to user 1000".
  explicit LockFile(std::filesystem::path folder);

  // Takes the lock if it is free, and notes in the file who has it. Returns false while another has
  // it. Throws std::system_error when the kernel refuses, std::runtime_error as the construction
  // does.
  [[nodiscard]] bool tryLock(std::chrono::steady_clock::time_point now);

  // Gives the lock back. Returns 0, else errno.
  [[nodiscard]] int unlock();

  // Returns who says in the file that it has the lock; nothing where no whole line stands there.
  // That is the truth for as long as tryLock() returns false, but for the moment between two
  // holders.
  [[nodiscard]] std::optional<LockHolder> readHolder();

  [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

 private:
  void open();
  void writeHolder(std::chrono::steady_clock::time_point now) noexcept;

  const std::filesystem::path m_folder;
  std::filesystem::path m_path;
  platform::Descriptor m_file;
  bool m_isMachines = false;
  std::string m_line;  // of the holder that was read last
  std::optional<LockHolder> m_holder;
};

}  // namespace os

#endif  // ORVEX_OS_POSIX_LOCKFILE_H_
