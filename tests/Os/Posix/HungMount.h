// A file system of the kernel that answers nothing, where the machine lets a test mount one.

#ifndef ORVEX_TESTS_OS_POSIX_HUNGMOUNT_H_
#define ORVEX_TESTS_OS_POSIX_HUNGMOUNT_H_

#include <fcntl.h>
#include <string>
#include <sys/mount.h>
#include <utility>

#include "platform/Posix/Descriptor.h"

namespace test {

// Stands over a directory while one lives: the server of the file system is this object, which
// reads no request. Whoever waits then gets an error.
class HungMount {
 public:
  explicit HungMount(std::string directory)
      : m_directory(std::move(directory)), m_server(::open("/dev/fuse", O_RDWR | O_CLOEXEC)) {
    const std::string options =
        "fd=" + std::to_string(m_server.get()) + ",rootmode=40000,user_id=0,group_id=0";
    m_isMounted = m_server.isOpen() && ::mount("hung", m_directory.c_str(), "fuse",
                                               MS_NOSUID | MS_NODEV, options.c_str()) == 0;
  }
  HungMount(const HungMount&) = delete;
  HungMount& operator=(const HungMount&) = delete;
  ~HungMount() { end(); }

  // Returns false where the machine has no such file systems, or not for this user.
  [[nodiscard]] bool isMounted() const { return m_isMounted; }

  void end() {
    m_server = {};
    if (std::exchange(m_isMounted, false)) {
      ::umount2(m_directory.c_str(), MNT_DETACH);
    }
  }

 private:
  const std::string m_directory;
  platform::Descriptor m_server;
  bool m_isMounted = false;
};

}  // namespace test

#endif  // ORVEX_TESTS_OS_POSIX_HUNGMOUNT_H_
