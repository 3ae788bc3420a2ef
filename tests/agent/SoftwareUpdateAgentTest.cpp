#include <atomic>
#include <cstddef>
#include <gmock/gmock.h>
#include <string>
#include <thread>
#include <vector>

#include "agent/ConcreteJobFactory.h"
#include "agent/Orvex_ConcreteJobClass.h"
#include "agent/SoftwareUpdateAgent.h"
#include "tests/agent/FakeJobFactory.h"
#include "tests/agent/ProviderMemory.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Throws.h"
#include "tests/support/VirtualSlots.h"

namespace {

using testing::ElementsAre;

// In the order of their registration.
const std::vector<std::string> kClasses = {
    "Orvex_SoftwareInstallationService", "Orvex_SoftwareInstallationServiceCapabilities",
    "Orvex_RegisteredProfile",           "Orvex_ElementCapabilities",
    "Orvex_ElementConformsToProfile",    "Orvex_ReferencedProfile",
    "Orvex_ServiceAffectsElement",       "Orvex_ConcreteJob",
    "Orvex_AffectedJobElement",          "Orvex_OwningJobElement",
};

TEST(SoftwareUpdateAgent, AddsItsProvidersInOrder) {
  const test::LogCapture log;
  const core::SoftwareUpdateAgent agent;

  std::vector<std::string> records;
  for (const std::string& name : kClasses) {
    records.push_back("Adding new class: " + name);
  }
  EXPECT_EQ(log.messages("core::CimClasses::add"), records);
  EXPECT_EQ(agent.getName(), "Software Update");
}

TEST(SoftwareUpdateAgent, ServesItsClassesAndNoOthers) {
  core::SoftwareUpdateAgent agent;

  EXPECT_THAT(agent.getClassNames(), testing::UnorderedElementsAreArray(kClasses));
  for (const std::string& name : kClasses) {
    EXPECT_TRUE(agent.hasClass(name)) << name;
  }
  EXPECT_FALSE(agent.hasClass("orvex_concretejob"));
  EXPECT_FALSE(agent.hasClass("Orvex_EthernetPort"));
  EXPECT_FALSE(agent.hasClass(""));
}

TEST(SoftwareUpdateAgent, EnumeratesItsClasses) {
  core::SoftwareUpdateAgent agent;

  EXPECT_EQ(agent.getInstances("Orvex_SoftwareInstallationService").count(), 1u);
  EXPECT_EQ(agent.getInstances("Orvex_ConcreteJob").first(), nullptr);
  EXPECT_THAT([&agent] { static_cast<void>(agent.getInstances("Orvex_Nothing")); },
              test::ThrowsExactly<utils::Exception>("class Orvex_Nothing does not exists"));
}

TEST(SoftwareUpdateAgent, IsEnumeratedByManyThreadsAtOnce) {
  constexpr int kThreads = 4;
  std::atomic<int> ready{0};
  std::atomic<int> wrong{0};
  core::SoftwareUpdateAgent agent;
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      ++ready;
      while (ready < kThreads) {
        std::this_thread::yield();
      }
      for (std::size_t number = 0; number < 3; ++number) {
        wrong += agent.getInstances(kClasses[number]).count() == 1 ? 0 : 1;
      }
      wrong += agent.getInstances("Orvex_ConcreteJob").count() == 0 ? 0 : 1;
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }

  EXPECT_EQ(wrong, 0);
}

TEST(SoftwareUpdateAgent, NamesItselfInItsRecords) {
  core::SoftwareUpdateAgent agent;
  const test::LogCapture log;
  static_cast<void>(agent.getInstances("Orvex_ConcreteJob"));

  EXPECT_THAT(log.messages("core::CimAgent::getInstances"),
              ElementsAre("[Software Update] Finding class: Orvex_ConcreteJob",
                          "[Software Update] Get instance of Orvex_ConcreteJob class"));
}

TEST(SoftwareUpdateAgent, HasTheJobFactorysOperationBehindThoseOfAProvider) {
  EXPECT_EQ(test::slotOf(&Orvex_ConcreteJobClass::verifyOrCreateNewJob), 4U);
}

TEST(SoftwareUpdateAgent, BringsTheJobFactory) {
  EXPECT_FALSE(ConcreteJobFactory::hasInstance());
  {
    const core::SoftwareUpdateAgent agent;
    EXPECT_TRUE(ConcreteJobFactory::hasInstance());
  }
  EXPECT_FALSE(ConcreteJobFactory::hasInstance());
}

TEST(SoftwareUpdateAgent, IsNotBuiltWithoutMemoryForAProvider) {
#ifdef QUORVEL_TEST_THREAD_SANITIZER
  GTEST_SKIP() << "ThreadSanitizer lets no program have an operator new of its own";
#endif
  const int count = static_cast<int>(kClasses.size());
  for (int refused = 0; refused < count; ++refused) {
    SCOPED_TRACE(kClasses[static_cast<std::size_t>(refused)]);
    const test::LogCapture log;
    const test::ProviderMemory memory(refused);
    EXPECT_THAT(
        [] { const core::SoftwareUpdateAgent agent; },
        test::ThrowsExactly<utils::Exception>(test::IsAssertion("CimClasses", "cimClass != NULL")));
    EXPECT_EQ(memory.getRequests(), refused + 1);
    EXPECT_EQ(memory.getLive(), 0);
    EXPECT_EQ(log.messages("core::CimClasses::add").size(), static_cast<std::size_t>(refused));
  }
}

TEST(SoftwareUpdateAgent, LeavesTheFactoryOfBeforeWhenItIsNotBuilt) {
#ifdef QUORVEL_TEST_THREAD_SANITIZER
  GTEST_SKIP() << "ThreadSanitizer lets no program have an operator new of its own";
#endif
  test::FakeJobFactory factory;
  const test::ProviderMemory memory(static_cast<int>(kClasses.size()) - 1);
  EXPECT_THROW(core::SoftwareUpdateAgent(), utils::Exception);

  EXPECT_EQ(ConcreteJobFactory::getInstance(), &factory);
}

}  // namespace
