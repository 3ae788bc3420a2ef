#include <gmock/gmock.h>
#include <memory>
#include <optional>

#include "cli/FlashLock.h"
#include "client/Fault.h"

namespace {

using testing::HasSubstr;

// A locker whose semaphore does as the test says.
class PlayedLocker final : public os::OSLocker {
 public:
  PlayedLocker(std::int32_t answer, int& releases) : m_answer(answer), m_releases(releases) {}

  [[nodiscard]] std::int32_t Lock() override {
    static_cast<void>(OSLocker::Lock());
    if (m_answer == kError) {
      noteFailure("no right to it");
    }
    return m_answer;
  }

 protected:
  [[nodiscard]] bool hasSemaphore() const override { return m_answer != kError; }
  [[nodiscard]] WaitResult waitForSemaphore(std::uint32_t /*milliseconds*/) override {
    return m_answer == kLocked ? WaitResult::Signalled : WaitResult::TimedOut;
  }
  [[nodiscard]] std::optional<SystemError> releaseSemaphore() override {
    ++m_releases;
    return std::nullopt;
  }

 private:
  const std::int32_t m_answer;
  int& m_releases;
};

// Returns why the lock was not had, empty where it was.
std::string takeLock(std::int32_t answer, int& releases) {
  try {
    const cli::FlashLock lock("activation of it", std::make_unique<PlayedLocker>(answer, releases));
    EXPECT_EQ(releases, 0);
    return "";
  } catch (const client::Fault& fault) {
    return fault.what();
  }
}

TEST(FlashLock, IsHadForAScope) {
  int releases = 0;
  EXPECT_EQ(takeLock(os::OSLocker::kLocked, releases), "");
  EXPECT_EQ(releases, 1);
}

TEST(FlashLock, SaysWhoHasIt) {
  int releases = 0;
  const std::string fault = takeLock(os::OSLocker::kTimeout, releases);
  EXPECT_THAT(fault, HasSubstr("activation of it refused: the flash was held by another program\n"
                               "  next: try again when that program has ended"));
  EXPECT_THAT(fault, HasSubstr("--lock-timeout"));
  EXPECT_EQ(releases, 0);
}

TEST(FlashLock, SaysWhyItCannotBeHad) {
  int releases = 0;
  EXPECT_EQ(takeLock(os::OSLocker::kError, releases),
            "activation of it refused: the flash lock cannot be had: no right to it\n"
            "  next: mend what keeps this user from the flash lock, then try again");
  EXPECT_EQ(releases, 0);
}

}  // namespace
