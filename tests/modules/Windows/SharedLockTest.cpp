// The flash lock in the hands of somebody else, through the loaded modules.

#include <gmock/gmock.h>

#include "tests/modules/Firmware.h"
#include "tests/modules/ModuleHost.h"
#include "tests/support/Windows/OtherProgram.h"

namespace {

using test::firmware;
using test::JobReport;
using test::kAdapter;
using test::kCompleted;
using test::kFirstPort;

TEST(SharedLock, OfAnotherProgramTimesAnUpdateOut) {
  test::ModuleHost host;
  host.makeAdapter(kAdapter, firmware(2));
  host.configure({{"Timeout", 100u}});
  host.load();
  const std::string image = host.makeImage(firmware(3));
  {
    test::OtherProgram other;
    ASSERT_TRUE(other.lock());
    ASSERT_EQ(host.install(kFirstPort, image), 4096u);
    EXPECT_EQ(host.awaitEnd(), (JobReport{10, 100, 4, "Timeout Error"}));
    EXPECT_EQ(host.flash(kAdapter), firmware(2));
  }
  ASSERT_EQ(host.install(kFirstPort, image), 4096u);
  EXPECT_EQ(host.awaitEnd(), kCompleted);
}

}  // namespace
