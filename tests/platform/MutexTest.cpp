#include <condition_variable>
#include <gmock/gmock.h>
#include <thread>
#include <vector>

#include "platform/Mutex.h"

namespace {

class MutexTest : public testing::Test {
 protected:
  void add() {
    const platform::Lock lock(m_mutex);
    ++m_count;
    m_changed.notify_all();
  }
  void awaitCount(int count) {
    const platform::Lock lock(m_mutex);
    while (m_count < count) {
      m_changed.wait(m_mutex);
    }
  }
  int count() {
    const platform::Lock lock(m_mutex);
    return m_count;
  }

 private:
  platform::Mutex m_mutex;
  std::condition_variable_any m_changed;
  int m_count ORVEX_GUARDED_BY(m_mutex) = 0;
};

TEST_F(MutexTest, LetsOneThreadInAtATime) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 10'000;
  std::vector<std::thread> threads;
  for (int number = 0; number < kThreads; ++number) {
    threads.emplace_back([this] {
      for (int round = 0; round < kRounds; ++round) {
        add();
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }

  EXPECT_EQ(count(), kThreads * kRounds);
}

TEST_F(MutexTest, IsFreeWhileAConditionIsWaitedFor) {
  std::thread waiter([this] { awaitCount(2); });
  add();
  add();
  waiter.join();

  EXPECT_EQ(count(), 2);
}

}  // namespace
