// A system log of the test's own, in the place where programs find that of the system; for those
// alone that are started by it, where the machine lets a test do that.

#ifndef ORVEX_TESTS_DAEMON_POSIX_OWNSYSTEMLOG_H_
#define ORVEX_TESTS_DAEMON_POSIX_OWNSYSTEMLOG_H_

#include <filesystem>
#include <functional>
#include <string>

#include "tests/support/Posix/DatagramSocket.h"
#include "tests/support/TempDirectory.h"

namespace test {

class OwnSystemLog {
 public:
  OwnSystemLog();

  // Runs `start`, whose new processes have this log. Returns false, without having run it, where
  // this user may not change what they see.
  [[nodiscard]] bool run(const std::function<void()>& start) const;

  // Sends it messages until it has no room for another.
  void fill() const;
  // Takes all messages out. Returns those that programs have sent.
  [[nodiscard]] std::string takeAll() const;

 private:
  [[nodiscard]] bool replaceDevices() const;

  const TempDirectory m_directory;
  const std::filesystem::path m_path = m_directory.path() / "log";
  const DatagramSocket m_socket{m_path.string()};
};

}  // namespace test

#endif  // ORVEX_TESTS_DAEMON_POSIX_OWNSYSTEMLOG_H_
