// A hang whose adapter is taken away, which a system forbids that keeps open files in their
// folders.

#include <filesystem>

#include "tests/midapi/Virtual/FlashWriteFixture.h"

namespace {

using HungFlashWriteTest = test::FlashWriteFixture;

TEST_F(HungFlashWriteTest, KeepsHangingUntilAnUnreadableAdapterIsGone) {
  setFaults(R"({"hang": {"atPercent": 30}})");
  m_clock.afterEachSleep([&](int count) {
    if (count == 1) {
      m_adapters.describe(kPci, "half an edit");
    }
    if (count == 4) {
      std::filesystem::remove_all(m_adapters.folder(kPci));
    }
  });
  write();
  EXPECT_EQ(m_code, 205U);
  EXPECT_EQ(m_clock.slept(), std::chrono::milliseconds(200));
}

}  // namespace
