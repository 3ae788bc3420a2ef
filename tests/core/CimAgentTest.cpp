#include <future>
#include <gmock/gmock.h>

#include "core/CimAgent.h"
#include "tests/core/TestInstance.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Throws.h"
#include "tests/support/VirtualSlots.h"
#include "tests/support/WaitUntil.h"

namespace {

using test::IsRecordOf;
using test::LogLevel;
using test::Provider;
using test::ThrowsExactly;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kFunction = "core::CimAgent::getInstances";

class Agent : public core::CimAgent {
 public:
  Agent() : CimAgent("Test agent") {}

  Provider* serve(const std::string& className) {
    auto* provider = new Provider(className, deaths());
    getClasses().add(provider);
    return provider;
  }

  static std::vector<std::string>& deaths() {
    static std::vector<std::string> names;
    return names;
  }
};

class ThrowingProvider : public Provider {
 public:
  ThrowingProvider() : Provider("Test_Broken") {}

  [[nodiscard]] core::InstanceList::Iterator getInstances() override {
    throw utils::EForbidden("not today");
  }
};

class BrokenAgent : public core::CimAgent {
 public:
  BrokenAgent() : CimAgent("Broken") { getClasses().add(new ThrowingProvider); }
};

// Enumerates while another thread asks its agent for its classes.
class AskedProvider : public Provider {
 public:
  explicit AskedProvider(core::CimAgent& agent) : Provider("Test_Asked"), m_agent(agent) {}

  [[nodiscard]] core::InstanceList::Iterator getInstances() override {
    m_answer = std::async(std::launch::async, [this] { return m_agent.hasClass("Test_Asked"); });
    EXPECT_EQ(m_answer.wait_for(test::kDeadline), std::future_status::ready);
    return Provider::getInstances();
  }

 private:
  core::CimAgent& m_agent;
  std::future<bool> m_answer;
};

class AskedAgent : public core::CimAgent {
 public:
  AskedAgent() : CimAgent("Asked") { getClasses().add(new AskedProvider(*this)); }
};

class CimAgentTest : public testing::Test {
 protected:
  CimAgentTest() { Agent::deaths().clear(); }

  auto enumerating(const std::string& className) {
    return [this, className] { static_cast<void>(m_agent.getInstances(className)); };
  }

  Agent m_agent;
};

TEST_F(CimAgentTest, KnowsTheClassesThatItServes) {
  m_agent.serve("Test_Fan");
  m_agent.serve("Test_Disk");

  EXPECT_TRUE(m_agent.hasClass("Test_Fan"));
  EXPECT_FALSE(m_agent.hasClass("Test_Cpu"));
  EXPECT_THAT(m_agent.getClassNames(), ElementsAre("Test_Disk", "Test_Fan"));
  EXPECT_EQ(m_agent.getName(), "Test agent");
}

TEST_F(CimAgentTest, TellsClassNamesApartByCase) {
  m_agent.serve("Test_Fan");

  EXPECT_FALSE(m_agent.hasClass("test_fan"));
  EXPECT_THAT(enumerating("test_fan"),
              ThrowsExactly<utils::Exception>("class test_fan does not exists"));
}

TEST_F(CimAgentTest, DoesNotKnowTheEmptyName) {
  m_agent.serve("Test_Fan");

  EXPECT_FALSE(m_agent.hasClass(""));
  EXPECT_THAT(enumerating(""), ThrowsExactly<utils::Exception>("class  does not exists"));
}

TEST_F(CimAgentTest, EntersNothingWhenAskedForAnUnknownClass) {
  EXPECT_THROW(enumerating("Test_Fan")(), utils::Exception);

  EXPECT_FALSE(m_agent.hasClass("Test_Fan"));
}

TEST_F(CimAgentTest, GivesTheProvidersCursor) {
  Provider* provider = m_agent.serve("Test_Fan");
  test::Instance* first = provider->serve("1");
  provider->serve("2")->setDeleted(true);
  test::Instance* third = provider->serve("3");

  EXPECT_THAT(test::walk(m_agent.getInstances("Test_Fan")), ElementsAre(first, third));
}

TEST_F(CimAgentTest, GivesAnEmptyCursorForAClassWithoutInstances) {
  m_agent.serve("Test_Fan");
  core::InstanceList::Iterator cursor = m_agent.getInstances("Test_Fan");

  EXPECT_EQ(cursor.first(), nullptr);
  EXPECT_EQ(cursor.count(), 0U);
}

TEST_F(CimAgentTest, LogsTheSearchAndTheEnumeration) {
  m_agent.serve("Test_Fan");
  const test::LogCapture log;
  static_cast<void>(m_agent.getInstances("Test_Fan"));

  EXPECT_THAT(log.records(),
              ElementsAre(IsRecordOf("CimAgent", LogLevel::Debug, kFunction,
                                     "[Test agent] Finding class: Test_Fan"),
                          IsRecordOf("CimAgent", LogLevel::Debug, kFunction,
                                     "[Test agent] Get instance of Test_Fan class")));
}

TEST_F(CimAgentTest, AddsNoErrorRecordToThatOfTheExceptionForAnUnknownClass) {
  const test::LogCapture log;
  EXPECT_THROW(enumerating("Test_Fan")(), utils::Exception);

  EXPECT_THAT(log.records(),
              ElementsAre(IsRecordOf("CimAgent", LogLevel::Debug, kFunction,
                                     "[Test agent] Finding class: Test_Fan"),
                          IsRecordOf("Exception", LogLevel::Error, "utils::Exception::Exception",
                                     "class Test_Fan does not exists")));
}

TEST_F(CimAgentTest, PassesOnWhatTheProviderThrows) {
  BrokenAgent broken;

  EXPECT_THAT([&] { static_cast<void>(broken.getInstances("Test_Broken")); },
              ThrowsExactly<utils::EForbidden>("Quorvel: EForbidden:not today"));
}

TEST(CimAgentLock, IsFreeWhileAProviderEnumerates) {
  AskedAgent agent;
  EXPECT_EQ(agent.getInstances("Test_Asked").count(), 0U);
}

TEST(CimAgentOperations, KeepTheOrderOfTheVirtualOnes) {
  struct Extended : core::CimAgent {
    virtual void extend() {}
  };
  EXPECT_EQ(test::slotOf(&core::CimAgent::hasClass), 0U);
  EXPECT_EQ(test::slotOf(&core::CimAgent::getInstances), 1U);
  EXPECT_EQ(test::slotOf(&Extended::extend), 4U);
}

TEST(CimAgentLife, EndsWithThatOfItsProvidersInTheOrderOfTheirNames) {
  Agent::deaths().clear();
  {
    Agent agent;
    agent.serve("Test_Fan");
    agent.serve("Test_Cpu");
    agent.serve("Test_Disk");
    EXPECT_THAT(Agent::deaths(), IsEmpty());
  }

  EXPECT_THAT(Agent::deaths(), ElementsAre("Test_Cpu", "Test_Disk", "Test_Fan"));
}

}  // namespace
