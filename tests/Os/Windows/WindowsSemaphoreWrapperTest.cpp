#include <gmock/gmock.h>
#include <windows.h>

#include "Os/Windows/WindowsSemaphoreWrapper.h"
#include "tests/support/VirtualSlots.h"

namespace {

using utils::WindowsSemaphoreWrapper;

// A semaphore without a name, made through the wrapper.
class SemaphoreWrapper : public testing::Test {
 protected:
  ~SemaphoreWrapper() override { CloseHandle(m_semaphore); }

  WindowsSemaphoreWrapper m_wrapper;
  WindowsSemaphoreWrapper::Handle m_semaphore = m_wrapper.create(nullptr, 1, 2, nullptr);
};

TEST_F(SemaphoreWrapper, WaitsForASemaphoreOfTheCount) {
  ASSERT_NE(m_semaphore, nullptr);

  EXPECT_EQ(m_wrapper.wait(m_semaphore, 0), 0U);
  EXPECT_EQ(m_wrapper.wait(m_semaphore, 0), 258U);
}

TEST_F(SemaphoreWrapper, ReleasesUpToTheMaximum) {
  std::int32_t previous = -1;

  EXPECT_TRUE(m_wrapper.release(m_semaphore, 1, &previous));
  EXPECT_EQ(previous, 1);
  EXPECT_FALSE(m_wrapper.release(m_semaphore, 1, &previous));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_TOO_MANY_POSTS));
  EXPECT_EQ(previous, 1);
}

TEST_F(SemaphoreWrapper, NeedNotTellTheCountBefore) {
  EXPECT_EQ(m_wrapper.wait(m_semaphore, 0), 0U);
  EXPECT_TRUE(m_wrapper.release(m_semaphore, 1, nullptr));
  EXPECT_EQ(m_wrapper.wait(m_semaphore, 0), 0U);
}

TEST_F(SemaphoreWrapper, FailsWithoutASemaphore) {
  EXPECT_EQ(m_wrapper.wait(nullptr, 0), WAIT_FAILED);
  EXPECT_FALSE(m_wrapper.release(nullptr, 1, nullptr));
  EXPECT_EQ(m_wrapper.create(nullptr, 2, 1, nullptr), nullptr);
}

TEST(SemaphoreWrapperOperations, KeepTheOrderOfTheVirtualOnes) {
  EXPECT_EQ(test::slotOf(&WindowsSemaphoreWrapper::create), 2U);
  EXPECT_EQ(test::slotOf(&WindowsSemaphoreWrapper::wait), 3U);
  EXPECT_EQ(test::slotOf(&WindowsSemaphoreWrapper::release), 4U);
}

TEST(SemaphoreWrapperSingleton, IsReplacedByTheNewestAndMadeOnFirstUse) {
  WindowsSemaphoreWrapper* first = WindowsSemaphoreWrapper::getInstance();
  ASSERT_NE(first, nullptr);
  {
    WindowsSemaphoreWrapper other;
    EXPECT_EQ(WindowsSemaphoreWrapper::getInstance(), &other);
  }

  EXPECT_EQ(WindowsSemaphoreWrapper::getInstance(), first);
}

}  // namespace
