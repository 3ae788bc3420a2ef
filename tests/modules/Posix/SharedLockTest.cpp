// The flash lock in the hands of another process, through the loaded modules.

#include <gmock/gmock.h>
#include <string>

#include "Os/OSLocker.h"
#include "tests/modules/Firmware.h"
#include "tests/modules/ModuleHost.h"
#include "tests/support/Posix/ChildProcess.h"
#include "tests/support/WaitUntil.h"

namespace {

using test::Bytes;
using test::ChildProcess;
using test::firmware;
using test::JobReport;
using test::kAdapter;
using test::kCompleted;
using test::kFirstPort;

class SharedLock : public testing::Test {
 protected:
  SharedLock() { m_host.makeAdapter(kAdapter, m_old); }

  std::uint32_t install() { return m_host.install(kFirstPort, m_host.makeImage(m_new)); }

  // Returns another process that has taken the flash lock.
  static ChildProcess holdLock() {
    return ChildProcess([](ChildProcess::Link& parent) {
      const auto locker = os::createOSLocker();
      if (locker->Lock() != os::OSLocker::kLocked) {
        return 1;
      }
      parent.tell('l');
      return parent.await('q') ? 0 : 1;
    });
  }

  const Bytes m_old = firmware(2);
  const Bytes m_new = firmware(3);
  test::ModuleHost m_host;
};

TEST_F(SharedLock, OfAnotherProcessTimesAnUpdateOut) {
  m_host.configure({{"Timeout", 100u}});
  ChildProcess holder = holdLock();
  ASSERT_TRUE(holder.link().await('l'));
  m_host.load();

  ASSERT_EQ(install(), 4096u);

  EXPECT_EQ(m_host.awaitEnd(), (JobReport{10, 100, 4, "Timeout Error"}));
  EXPECT_EQ(m_host.flash(kAdapter), m_old);
  holder.link().tell('q');
  EXPECT_EQ(holder.wait(), 0);

  m_host.configure({});
  ASSERT_EQ(install(), 4096u);
  EXPECT_EQ(m_host.awaitEnd(), kCompleted);
}

TEST_F(SharedLock, OfAProcessThatIsKilledIsFree) {
  ChildProcess holder = holdLock();
  ASSERT_TRUE(holder.link().await('l'));
  m_host.load();
  ASSERT_EQ(install(), 4096u);
  ASSERT_TRUE(test::waitUntil([this] { return m_host.job().state == 4; }));
  EXPECT_EQ(m_host.flash(kAdapter), m_old);

  holder.kill();

  EXPECT_EQ(m_host.awaitEnd(), kCompleted);
  EXPECT_EQ(m_host.flash(kAdapter), m_new);
}

}  // namespace
