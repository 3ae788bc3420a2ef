// A hang whose adapter is taken away, which a system forbids that keeps open files in their
// folders.

#include <filesystem>

#include "tests/midapi/FlashWriteTest.h"

namespace ma {
namespace {

using HungFlashWriteTest = FlashWriteTest;

TEST_F(HungFlashWriteTest, KeepsHangingUntilAnUnreadableAdapterIsGone) {
  setFaults(R"({"hang": {"atPercent": 30}})");
  const auto writing = writeOnAThread();
  waitForProgress(30);
  m_adapters.describe(kPci, "half an edit");
  EXPECT_EQ(writing.wait_for(std::chrono::milliseconds(150)), std::future_status::timeout);
  std::filesystem::remove_all(m_adapters.folder(kPci));
  ASSERT_EQ(writing.wait_for(kPatience), std::future_status::ready);
  EXPECT_EQ(m_code, 205U);
}

}  // namespace
}  // namespace ma
