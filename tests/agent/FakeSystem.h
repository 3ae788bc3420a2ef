// What an update needs of the process round it, played by a test: the configuration and the flash
// lock. Each becomes the current one of its kind for its lifetime.

#ifndef ORVEX_TESTS_AGENT_FAKESYSTEM_H_
#define ORVEX_TESTS_AGENT_FAKESYSTEM_H_

#include <atomic>
#include <cstdint>
#include <optional>

#include "Os/OSLocker.h"
#include "Os/QuorvelConfig.h"

namespace test {

class FakeConfig : public utils::QuorvelConfig {
 public:
  FakeConfig() : QuorvelConfig("") {}

  std::uint32_t getTimeout() override { return 1; }
  bool getDowngradeEnable() override { return isDowngradeEnabled; }
  std::uint32_t getMaxImageSize() override { return maxImageSize; }

  bool isDowngradeEnabled = false;
  std::uint32_t maxImageSize = kDefaultMaxImageSize;
};

class FakeLocker : public os::OSLocker {
 public:
  FakeLocker() = default;

  // Another program holds the lock for longer than the timeout.
  void beHeldByAnother() { m_answer = WaitResult::TimedOut; }
  [[nodiscard]] bool isHeld() const { return m_isHeld; }

 protected:
  [[nodiscard]] bool hasSemaphore() const override { return true; }
  [[nodiscard]] WaitResult waitForSemaphore(std::uint32_t /*milliseconds*/) override {
    m_isHeld = m_answer == WaitResult::Signalled;
    return m_answer;
  }
  [[nodiscard]] std::optional<SystemError> releaseSemaphore() override {
    m_isHeld = false;
    return std::nullopt;
  }

 private:
  std::atomic<WaitResult> m_answer{WaitResult::Signalled};
  std::atomic<bool> m_isHeld{false};
};

}  // namespace test

#endif  // ORVEX_TESTS_AGENT_FAKESYSTEM_H_
