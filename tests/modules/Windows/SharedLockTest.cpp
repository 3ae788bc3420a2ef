// The flash lock in the hands of somebody else, through the loaded modules.

#include <gmock/gmock.h>
#include <windows.h>

#include "tests/modules/Firmware.h"
#include "tests/modules/ModuleHost.h"

namespace {

using test::firmware;
using test::JobReport;
using test::kAdapter;
using test::kCompleted;
using test::kFirstPort;

// Holds the semaphore by a handle of its own, as another program does.
class Holder {
 public:
  Holder() : m_semaphore(CreateSemaphoreA(nullptr, 1, 1, "Global\\RavlApplySemaphore")) {
    EXPECT_EQ(WaitForSingleObject(m_semaphore, 0), WAIT_OBJECT_0);
  }
  Holder(const Holder&) = delete;
  Holder& operator=(const Holder&) = delete;
  ~Holder() {
    ReleaseSemaphore(m_semaphore, 1, nullptr);
    CloseHandle(m_semaphore);
  }

 private:
  HANDLE m_semaphore;
};

TEST(SharedLock, OfAnotherProgramTimesAnUpdateOut) {
  test::ModuleHost host;
  host.makeAdapter(kAdapter, firmware(2));
  host.configure({{"Timeout", 100u}});
  host.load();
  const std::string image = host.makeImage(firmware(3));
  {
    const Holder holder;
    ASSERT_EQ(host.install(kFirstPort, image), 4096u);
    EXPECT_EQ(host.awaitEnd(), (JobReport{10, 100, 4, "Timeout Error"}));
    EXPECT_EQ(host.flash(kAdapter), firmware(2));
  }
  ASSERT_EQ(host.install(kFirstPort, image), 4096u);
  EXPECT_EQ(host.awaitEnd(), kCompleted);
}

}  // namespace
