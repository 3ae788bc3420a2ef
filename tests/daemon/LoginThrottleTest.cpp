#include <gmock/gmock.h>
#include <string>

#include "daemon/LoginThrottle.h"

namespace {

using std::chrono::milliseconds;

class LoginThrottle : public testing::Test {
 protected:
  void pass(milliseconds time) { m_now += time; }

  // Lets the last refusal be answered, and fails again.
  milliseconds failAgain(const std::string& address) {
    if (const auto refusal = m_throttle.findRefusal(address)) {
      pass(*refusal);
    }
    return m_throttle.addFailure(address);
  }

  quorveld::LoginThrottle::Clock::time_point m_now{std::chrono::hours(1)};
  quorveld::LoginThrottle m_throttle{[this] { return m_now; }};
};

TEST_F(LoginThrottle, DoublesTheDelayWithEachFailureUpToTheLongest) {
  for (const int expected : {500, 1000, 2000, 4000, 8000, 8000}) {
    EXPECT_EQ(failAgain("192.0.2.7"), milliseconds(expected));
  }
}

TEST_F(LoginThrottle, RefusesWhileTheLastRefusalWaits) {
  EXPECT_FALSE(m_throttle.findRefusal("192.0.2.7"));
  static_cast<void>(m_throttle.addFailure("192.0.2.7"));
  EXPECT_EQ(m_throttle.findRefusal("192.0.2.7"), milliseconds(500));
  pass(milliseconds(499));
  EXPECT_EQ(m_throttle.findRefusal("192.0.2.7"), milliseconds(500));
  pass(milliseconds(1));
  EXPECT_FALSE(m_throttle.findRefusal("192.0.2.7"));
}

TEST_F(LoginThrottle, CountsEachNetworkForItself) {
  static_cast<void>(m_throttle.addFailure("192.0.2.7"));
  EXPECT_FALSE(m_throttle.findRefusal("192.0.2.8"));
  EXPECT_EQ(m_throttle.addFailure("192.0.2.8"), milliseconds(500));

  static_cast<void>(m_throttle.addFailure("2001:db8:0:1::1"));
  EXPECT_TRUE(m_throttle.findRefusal("2001:db8:0:1::2"));
}

// A program of this machine has 16 million of them at hand.
TEST_F(LoginThrottle, CountsAllLoopbackAddressesTogether) {
  static_cast<void>(m_throttle.addFailure("127.0.0.1"));
  for (const char* const address : {"127.0.0.2", "127.9.9.9", "::1", "::ffff:127.0.0.3"}) {
    EXPECT_TRUE(m_throttle.findRefusal(address)) << address;
  }
  EXPECT_EQ(failAgain("127.0.0.4"), milliseconds(1000));
}

TEST_F(LoginThrottle, ForgetsAfterAWhileWithoutFailures) {
  EXPECT_EQ(failAgain("192.0.2.7"), milliseconds(500));
  pass(quorveld::LoginThrottle::kMemory - milliseconds(1));
  EXPECT_EQ(failAgain("192.0.2.7"), milliseconds(1000));
  pass(quorveld::LoginThrottle::kMemory);
  EXPECT_EQ(failAgain("192.0.2.7"), milliseconds(500));
  EXPECT_EQ(m_throttle.size(), 1u);
}

TEST_F(LoginThrottle, LetsNewNetworksWaitForLongestWhileItIsFull) {
  for (std::size_t i = 0; i < quorveld::LoginThrottle::kMostNetworks; ++i) {
    EXPECT_EQ(
        m_throttle.addFailure("10.0." + std::to_string(i / 256) + "." + std::to_string(i % 256)),
        milliseconds(500));
    pass(milliseconds(1));
  }
  EXPECT_EQ(failAgain("2001:db8:0:1::1"), quorveld::LoginThrottle::kLongestDelay);
  EXPECT_EQ(failAgain("2001:db8:0:2::1"), quorveld::LoginThrottle::kLongestDelay);
  // Those that it knows go on from where they were.
  EXPECT_EQ(failAgain("10.0.15.255"), milliseconds(1000));
  EXPECT_EQ(m_throttle.size(), quorveld::LoginThrottle::kMostNetworks);

  pass(quorveld::LoginThrottle::kMemory);
  EXPECT_EQ(failAgain("2001:db8:0:3::1"), milliseconds(500));
}

TEST_F(LoginThrottle, RemembersABoundedNumberAndDropsTheQuietest) {
  EXPECT_EQ(m_throttle.addFailure("192.0.2.7"), milliseconds(500));
  for (std::size_t i = 0; i < quorveld::LoginThrottle::kMostNetworks; ++i) {
    pass(milliseconds(1));
    static_cast<void>(
        m_throttle.addFailure("10.0." + std::to_string(i / 256) + "." + std::to_string(i % 256)));
  }
  EXPECT_EQ(m_throttle.size(), quorveld::LoginThrottle::kMostNetworks);
  EXPECT_FALSE(m_throttle.findRefusal("192.0.2.7"));
  EXPECT_TRUE(m_throttle.findRefusal("10.0.15.255"));
}

}  // namespace
