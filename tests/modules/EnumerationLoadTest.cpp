// Enumerations under load: many clients beside running updates, and many enumerations one after the
// other.

#include <atomic>
#include <chrono>
#include <cstddef>
#include <gmock/gmock.h>
#include <map>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "tests/modules/Client.h"
#include "tests/modules/Firmware.h"
#include "tests/modules/HeapBytes.h"
#include "tests/modules/ModuleHost.h"

namespace {

using test::firmware;
using test::InstanceReport;
using test::kAdapter;
using test::kCompleted;
using test::kFirstPort;
using test::kOtherAdapter;
using test::kOtherPort;

constexpr auto kLoadTime = std::chrono::seconds(QUORVEL_TEST_LOAD_SECONDS);
constexpr int kClients = 4;

class EnumerationLoad : public testing::Test {
 protected:
  EnumerationLoad() {
    // About half a second for an update.
    m_host.makeAdapter(kAdapter, firmware(2), "\"writeRate\": 24000");
    m_host.makeAdapter(kOtherAdapter, firmware(2), "\"writeRate\": 24000");
    static_cast<void>(m_host.offer("new.rom", firmware(3)));
    m_host.load();
  }

  test::ModuleHost m_host;
};

// One client: enumerates every class, and resolves every reference that it comes upon.
class BusyClient {
 public:
  void run(const std::atomic<bool>& isOver) {
    while (!isOver || m_rounds == 0) {
      goRound();
      ++m_rounds;
    }
  }

  [[nodiscard]] std::size_t rounds() const { return m_rounds; }
  // What was missed: a reference that leads nowhere, or a class with fewer instances than before.
  [[nodiscard]] const std::vector<std::string>& losses() const { return m_losses; }

 private:
  void goRound() {
    std::set<std::string> references;
    for (const std::string& className : test::servedClasses()) {
      const std::vector<InstanceReport> instances = test::enumerate(className);
      if (instances.size() < m_counts[className]) {
        m_losses.push_back(className + " has lost instances");
      }
      m_counts[className] = instances.size();
      for (const InstanceReport& instance : instances) {
        references.merge(std::set<std::string>(toSet(instance.references())));
      }
    }
    for (const std::string& reference : references) {
      const auto instance = test::resolve(reference);
      if (!instance || instance->path != reference) {
        m_losses.push_back(reference + " leads nowhere");
      }
    }
  }

  static std::set<std::string> toSet(const std::vector<std::string>& texts) {
    return {texts.begin(), texts.end()};
  }

  std::map<std::string, std::size_t> m_counts;
  std::size_t m_rounds = 0;
  std::vector<std::string> m_losses;
};

TEST_F(EnumerationLoad, LosesNothingWhileUpdatesRun) {
  std::atomic<bool> isOver{false};
  std::vector<BusyClient> clients(kClients);
  std::vector<std::thread> threads;
  for (BusyClient& client : clients) {
    threads.emplace_back([&client, &isOver] { client.run(isOver); });
  }

  const auto end = std::chrono::steady_clock::now() + kLoadTime;
  const std::string image = m_host.makeImage(firmware(3));
  std::size_t updates = 0;
  // Each adapter once, however slow the machine is.
  for (; updates < 2 || std::chrono::steady_clock::now() < end; ++updates) {
    EXPECT_EQ(m_host.install(updates % 2 == 0 ? kFirstPort : kOtherPort, image), 4096u);
    EXPECT_EQ(m_host.awaitEnd(), kCompleted);
  }
  isOver = true;
  for (std::thread& thread : threads) {
    thread.join();
  }

  EXPECT_EQ(test::enumerate("Orvex_ConcreteJob").size(), updates);
  for (const BusyClient& client : clients) {
    EXPECT_GE(client.rounds(), 1u);
    EXPECT_THAT(client.losses(), testing::IsEmpty());
  }
  EXPECT_EQ(m_host.flash(kAdapter), firmware(3));
  EXPECT_EQ(m_host.flash(kOtherAdapter), firmware(3));
}

TEST_F(EnumerationLoad, LeavesTheHeapAsItWas) {
  ASSERT_EQ(m_host.install(kFirstPort, m_host.makeImage(firmware(3))), 4096u);
  ASSERT_EQ(m_host.awaitEnd(), kCompleted);
  const std::vector<std::string> classes = test::servedClasses();
  const auto enumerateAll = [&classes](std::size_t times) {
    for (std::size_t count = 0; count < times; ++count) {
      for (const std::string& className : classes) {
        EXPECT_FALSE(test::enumerate(className).empty()) << className;
      }
    }
  };

  static_cast<void>(test::heapBytes());
  enumerateAll(10);

  // What a round leaves behind is a block at the least, in every batch of rounds. The allocator's
  // bookkeeping moves by some hundred bytes, and what an ending thread or a first use takes grows
  // one batch only.
  const auto growthOfBatch = [&enumerateAll] {
    const std::size_t before = test::heapBytes();
    enumerateAll(test::kEnumerations);
    const std::size_t after = test::heapBytes();
    return after > before ? after - before : 0;
  };
  std::vector<std::size_t> growths;
  do {
    growths.push_back(growthOfBatch());
  } while (growths.back() >= test::kEnumerations * test::kSmallestBlock && growths.size() < 3);
  EXPECT_LT(growths.back(), test::kEnumerations * test::kSmallestBlock)
      << testing::PrintToString(growths);
}

}  // namespace
