// The machine's flash lock, had by another program than the one that is tried: by the test.

#ifndef ORVEX_TESTS_CLI_POSIX_OTHERUPDATER_H_
#define ORVEX_TESTS_CLI_POSIX_OTHERUPDATER_H_

#include <chrono>
#include <gtest/gtest.h>

#include "Os/Posix/LockFile.h"
#include "Os/Posix/PosixOSLocker.h"
#include "tests/support/WaitUntil.h"

namespace test {

class OtherUpdater {
 public:
  OtherUpdater() {
    EXPECT_TRUE(waitUntil([this] { return m_lock.tryLock(std::chrono::steady_clock::now()); }));
  }
  OtherUpdater(const OtherUpdater&) = delete;
  OtherUpdater& operator=(const OtherUpdater&) = delete;
  ~OtherUpdater() { EXPECT_EQ(m_lock.unlock(), 0); }

 private:
  os::LockFile m_lock{os::OSLockerPosix::kFolder};
};

}  // namespace test

#endif  // ORVEX_TESTS_CLI_POSIX_OTHERUPDATER_H_
