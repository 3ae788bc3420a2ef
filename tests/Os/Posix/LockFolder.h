// A folder with a flash lock of a test's own, and others who are at it.

#ifndef ORVEX_TESTS_OS_POSIX_LOCKFOLDER_H_
#define ORVEX_TESTS_OS_POSIX_LOCKFOLDER_H_

#include <fcntl.h>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Os/Posix/LockFile.h"
#include "platform/Posix/Descriptor.h"
#include "tests/support/TempDirectory.h"

namespace test {

class LockFolder {
 public:
  class Stranger;
  class Blocker;

  [[nodiscard]] const std::filesystem::path& path() const { return m_directory.path(); }
  // The machine's file.
  [[nodiscard]] std::filesystem::path machinesFile() const { return path() / os::LockFile::kName; }
  // The one that a user locks by who is let into no other.
  [[nodiscard]] std::filesystem::path fileOf(uid_t user) const {
    return machinesFile().string() + "." + std::to_string(user);
  }
  // The one that the user who runs the test locks by.
  [[nodiscard]] std::filesystem::path file() const {
    return geteuid() == 0 ? machinesFile() : fileOf(geteuid());
  }

  // Returns whether somebody has the lock.
  [[nodiscard]] bool isTaken() const {
    const platform::Descriptor descriptor(::open(file().c_str(), O_RDWR | O_CLOEXEC));
    return descriptor.isOpen() && ::flock(descriptor.get(), LOCK_EX | LOCK_NB) != 0;
  }

 private:
  const TempDirectory m_directory;
};

// Has the lock of a file that is there, and says nothing of itself in it.
class LockFolder::Stranger {
 public:
  explicit Stranger(const LockFolder& folder)
      : m_file(::open(folder.file().c_str(), O_RDWR | O_CLOEXEC)) {
    if (!m_file.isOpen() || ::flock(m_file.get(), LOCK_EX | LOCK_NB) != 0) {
      throw std::runtime_error("the lock is not free");
    }
  }
  void unlock() const { ::flock(m_file.get(), LOCK_UN); }

 private:
  const platform::Descriptor m_file;
};

// Has put a file where another user's belongs.
class LockFolder::Blocker {
 public:
  explicit Blocker(std::filesystem::path file) : m_file(std::move(file)) {
    std::filesystem::remove(m_file);
    const platform::Descriptor made(
        ::open(m_file.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (!made.isOpen()) {
      throw std::runtime_error("cannot make " + m_file.string());
    }
  }
  Blocker(const Blocker&) = delete;
  Blocker& operator=(const Blocker&) = delete;
  ~Blocker() { std::filesystem::remove(m_file); }

 private:
  const std::filesystem::path m_file;
};

}  // namespace test

#endif  // ORVEX_TESTS_OS_POSIX_LOCKFOLDER_H_
