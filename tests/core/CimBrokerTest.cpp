#include <atomic>
#include <future>
#include <gmock/gmock.h>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "core/CimBroker.h"
#include "core/ClassDeclarer.h"
#include "tests/core/TestInstance.h"
#include "tests/support/Throws.h"
#include "tests/support/WaitUntil.h"

namespace {

using test::Instance;
using test::Provider;
using testing::ElementsAre;
using testing::IsEmpty;

class Agent : public core::CimAgent {
 public:
  Agent() : CimAgent("Test agent") {}

  Provider* serve(const std::string& className) {
    auto* provider = new Provider(className);
    getClasses().add(provider);
    return provider;
  }
};

// An instance with two keys of different types and a property that is no key.
class Port : public core::CimInstance {
 public:
  Port(const std::string& name, std::uint16_t number) {
    Name.setKey();
    Name.setValue(name);
    Number.setKey();
    Number.setValue(number);
    Caption.setValue("a port");
  }
  [[nodiscard]] std::string getClassName() const override { return "Test_Port"; }

  core::CimPropertyString Name{"Name", this};
  core::CimPropertyUint16 Number{"Number", this};
  core::CimPropertyString Caption{"Caption", this};
};

class PortProvider : public core::CimClass {
 public:
  Port* add(const std::string& name, std::uint16_t number) {
    auto* port = new Port(name, number);
    m_instances.add(port);
    return port;
  }
  [[nodiscard]] std::string getName() const override { return "Test_Port"; }
  [[nodiscard]] core::InstanceList::Iterator getInstances() override {
    return m_instances.iterator(false);
  }

 private:
  core::InstanceList m_instances;
};

class PortAgent : public core::CimAgent {
 public:
  PortAgent() : CimAgent("Ports") { getClasses().add(m_ports); }

  PortProvider* m_ports = new PortProvider;
};

class ThrowingProvider : public Provider {
 public:
  ThrowingProvider() : Provider("Test_Broken") {}

  [[nodiscard]] core::InstanceList::Iterator getInstances() override {
    throw utils::EUnspecifiedError("no adapters");
  }
};

class BrokenAgent : public core::CimAgent {
 public:
  BrokenAgent() : CimAgent("Broken") { getClasses().add(new ThrowingProvider); }
};

// An agent that declares a class of the test's choice.
class DeclaringAgent : public core::CimAgent, public core::ClassDeclarer {
 public:
  explicit DeclaringAgent(std::string className)
      : CimAgent("Declaring"), m_className(std::move(className)) {}

  void declareClasses(core::CimSchema& schema) const override {
    core::ClassDeclaration declaration;
    declaration.name = m_className;
    schema.add(std::move(declaration));
  }

 private:
  const std::string m_className;
};

class CimBroker : public testing::Test {
 protected:
  core::CimInstance* find(const std::string& path) {
    return m_broker.getInstanceByPath(core::CimPath(path));
  }
  std::vector<core::CimInstance*> walk(const std::string& className) {
    return test::walk(m_broker.getInstances(className));
  }

  core::CimBroker m_broker;
};

TEST_F(CimBroker, KeepsAgentsInTheOrderInWhichTheyWereAdded) {
  Agent second;
  Agent first;
  m_broker.addAgent(&first);
  m_broker.addAgent(&second);

  EXPECT_THAT(m_broker.getAgents(), ElementsAre(&first, &second));
}

TEST_F(CimBroker, RefusesANullAgent) {
  EXPECT_THAT(
      [&] { m_broker.addAgent(nullptr); },
      test::ThrowsExactly<utils::Exception>(test::IsAssertion("CimBroker", "agent != NULL")));
  EXPECT_THAT(m_broker.getAgents(), IsEmpty());
}

TEST_F(CimBroker, GivesTheInstancesOfAllAgentsThatServeAClassAgentByAgent) {
  Agent first;
  Agent other;
  Agent second;
  Instance* b1 = second.serve("Test_Fan")->serve("b1");
  Provider* fans = first.serve("Test_Fan");
  Instance* a1 = fans->serve("a1");
  Instance* a2 = fans->serve("a2");
  other.serve("Test_Disk")->serve("d");
  m_broker.addAgent(&first);
  m_broker.addAgent(&other);
  m_broker.addAgent(&second);

  EXPECT_THAT(walk("Test_Fan"), ElementsAre(a1, a2, b1));
}

// Two agents that serve fans, one that serves none of them and one that serves something else.
class CimBrokerCursor : public CimBroker {
 protected:
  CimBrokerCursor() {
    for (Agent* agent : {&m_first, &m_other, &m_without, &m_second}) {
      m_broker.addAgent(agent);
    }
    m_without.serve("Test_Fan");
  }

  Agent m_first;
  Agent m_other;
  Agent m_without;
  Agent m_second;
  Provider* const m_firstFans = m_first.serve("Test_Fan");
  Provider* const m_disks = m_other.serve("Test_Disk");
  Instance* const m_disk = m_disks->serve("d");
  Provider* const m_secondFans = m_second.serve("Test_Fan");
  Instance* const m_a1 = m_firstFans->serve("a1");
  Instance* const m_a2 = m_firstFans->serve("a2");
  Instance* const m_b1 = m_secondFans->serve("b1");
};

TEST_F(CimBrokerCursor, BeginsWithNextWhereNobodyHasBegun) {
  core::InstanceList::Iterator cursor = m_broker.getInstances("Test_Fan");

  EXPECT_EQ(cursor.next(), m_a1);
  EXPECT_EQ(cursor.next(), m_a2);
  EXPECT_EQ(cursor.next(), m_b1);
  EXPECT_EQ(cursor.next(), nullptr);
  EXPECT_EQ(cursor.next(), nullptr);
}

TEST_F(CimBrokerCursor, RewindsOverAllAgents) {
  core::InstanceList::Iterator cursor = m_broker.getInstances("Test_Fan");
  static_cast<void>(test::walk(cursor));
  for (int i = 0; i < 3; ++i) {
    static_cast<void>(cursor.next());
  }

  EXPECT_EQ(cursor.first(), m_a1);
  EXPECT_EQ(cursor.next(), m_a2);
  EXPECT_EQ(cursor.next(), m_b1);
}

TEST_F(CimBrokerCursor, CountsAndCopiesWithoutMoving) {
  core::InstanceList::Iterator cursor = m_broker.getInstances("Test_Fan");
  ASSERT_EQ(cursor.first(), m_a1);

  EXPECT_EQ(cursor.count(), 3U);
  EXPECT_THAT(test::walk(cursor), ElementsAre(m_a1, m_a2, m_b1));
  EXPECT_EQ(cursor.next(), m_a2);
}

TEST_F(CimBrokerCursor, ReadsTheMarksOfDeletedInstancesAfresh) {
  core::InstanceList::Iterator cursor = m_broker.getInstances("Test_Fan");
  m_a1->setDeleted(true);
  ASSERT_EQ(cursor.first(), m_a2);
  m_b1->setDeleted(true);

  EXPECT_EQ(cursor.next(), nullptr);
  EXPECT_EQ(cursor.count(), 1U);
}

TEST_F(CimBrokerCursor, ShowsAWalkWhatAnAgentAddsBeforeItsEnd) {
  core::InstanceList::Iterator disks = m_broker.getInstances("Test_Disk");
  core::InstanceList::Iterator fans = m_broker.getInstances("Test_Fan");
  Instance* const disk = m_disks->serve("e");
  Instance* const fan = m_firstFans->serve("a3");

  EXPECT_THAT(test::walk(std::move(disks)), ElementsAre(m_disk, disk));
  EXPECT_THAT(test::walk(std::move(fans)), ElementsAre(m_a1, m_a2, fan, m_b1));
}

TEST_F(CimBroker, AsksForInstancesWhileARequestIsHeldElsewhere) {
  Agent agent;
  Instance* const fan = agent.serve("Test_Fan")->serve("1");
  m_broker.addAgent(&agent);
  std::future<std::vector<core::CimInstance*>> fans;
  {
    const core::CimBroker::Request request(m_broker);
    fans = std::async(std::launch::async, [this] { return walk("Test_Fan"); });
    EXPECT_EQ(fans.wait_for(test::kDeadline), std::future_status::ready);
  }
  EXPECT_THAT(fans.get(), ElementsAre(fan));
}

TEST_F(CimBroker, PassesOverDeletedInstances) {
  Agent agent;
  Provider* fans = agent.serve("Test_Fan");
  fans->serve("1")->setDeleted(true);
  Instance* second = fans->serve("2");
  m_broker.addAgent(&agent);

  EXPECT_THAT(walk("Test_Fan"), ElementsAre(second));
  EXPECT_EQ(find("Test_Fan.Name=\"1\""), nullptr);
}

TEST_F(CimBroker, GivesNothingForAClassThatNobodyServes) {
  Agent agent;
  agent.serve("Test_Fan")->serve("1");
  m_broker.addAgent(&agent);

  EXPECT_THAT(walk("Test_Disk"), IsEmpty());
  EXPECT_THAT(walk("test_fan"), IsEmpty());
  EXPECT_THAT(walk(""), IsEmpty());
  EXPECT_EQ(find("Test_Disk.Name=1"), nullptr);
}

TEST_F(CimBroker, GivesNothingWithoutAgents) {
  EXPECT_THAT(walk("Test_Fan"), IsEmpty());
}

TEST_F(CimBroker, PassesOnWhatAProviderThrows) {
  BrokenAgent agent;
  m_broker.addAgent(&agent);

  const auto throwsIt =
      test::ThrowsExactly<utils::EUnspecifiedError>("Quorvel: EUnspecifiedError:no adapters");
  EXPECT_THAT([&] { static_cast<void>(m_broker.getInstances("Test_Broken")); }, throwsIt);
  EXPECT_THAT([&] { static_cast<void>(find("Test_Broken.Name=1")); }, throwsIt);
}

TEST_F(CimBroker, FindsTheInstanceAllOfWhoseKeysMatch) {
  PortAgent agent;
  agent.m_ports->add("eth0", 1);
  Port* wanted = agent.m_ports->add("eth0", 2);
  agent.m_ports->add("eth1", 2);
  m_broker.addAgent(&agent);

  EXPECT_EQ(find("Test_Port.Name=\"eth0\",Number=2"), wanted);
  EXPECT_EQ(find("Test_Port.Number=2,Name=\"eth0\""), wanted);
  EXPECT_EQ(find("root/zolan:Test_Port.Name=eth0,Number=\"2\""), wanted);
}

TEST_F(CimBroker, FindsEveryInstanceByItsOwnPath) {
  PortAgent agent;
  m_broker.addAgent(&agent);
  for (const char* name : {"eth0", "a.b", "a,b=c", "ns:x", "\"", "a\\\"b", " "}) {
    Port* port = agent.m_ports->add(name, 7);
    EXPECT_EQ(find(port->getPath()), port) << port->getPath();
  }
}

TEST_F(CimBroker, FindsNothingUnlessAllKeysMatch) {
  PortAgent agent;
  agent.m_ports->add("eth0", 1);
  m_broker.addAgent(&agent);

  EXPECT_EQ(find("Test_Port.Name=\"eth0\""), nullptr);
  EXPECT_EQ(find("Test_Port.Name=\"eth0\",Number=2"), nullptr);
  EXPECT_EQ(find("Test_Port.Name=\"ETH0\",Number=1"), nullptr);
  EXPECT_EQ(find("Test_Port.name=\"eth0\",Number=1"), nullptr);
  EXPECT_EQ(find("Test_Port.Name=\"eth0\",Number=1,Extra=1"), nullptr);
  EXPECT_EQ(find("Test_Port.Name=\"eth0\",Number=1,Caption=\"a port\""), nullptr);
}

TEST_F(CimBroker, FindsTheFirstOfEqualInstancesInTheOrderOfTheAgents) {
  Agent first;
  Agent second;
  Instance* ofSecond = second.serve("Test_Fan")->serve("1");
  Instance* ofFirst = first.serve("Test_Fan")->serve("1");
  m_broker.addAgent(&second);
  m_broker.addAgent(&first);

  EXPECT_EQ(find("Test_Fan.Name=\"1\""), ofSecond);
  EXPECT_NE(ofFirst, ofSecond);
}

TEST_F(CimBroker, KnowsTheDeclarationsOfAllAgents) {
  DeclaringAgent fans("Test_Fan");
  DeclaringAgent disks("Test_Disk");
  m_broker.addAgent(&fans);
  m_broker.addAgent(&disks);

  const auto schema = m_broker.getSchema();
  EXPECT_NE(schema->find("Test_Fan"), nullptr);
  EXPECT_NE(schema->find("Test_Disk"), nullptr);
  EXPECT_EQ(m_broker.getSchema(), schema);
}

TEST_F(CimBroker, TakesAnAgentThatDeclaresNothing) {
  Agent silent;
  DeclaringAgent fans("Test_Fan");
  DeclaringAgent disks("Test_Disk");
  silent.serve("Test_Cpu");
  m_broker.addAgent(&silent);
  m_broker.addAgent(&fans);

  EXPECT_EQ(m_broker.getSchema()->getDescendants("").size(), 1U);
  m_broker.addAgent(&disks);
  EXPECT_EQ(m_broker.getSchema()->getDescendants("").size(), 2U);
}

TEST_F(CimBroker, LeavesASchemaThatWasGivenOutAsItIs) {
  const auto before = m_broker.getSchema();
  DeclaringAgent fans("Test_Fan");
  m_broker.addAgent(&fans);

  EXPECT_NE(m_broker.getSchema()->find("Test_Fan"), nullptr);
  EXPECT_EQ(before->find("Test_Fan"), nullptr);
}

TEST_F(CimBroker, HoldsARequestAgainOnTheSameThread) {
  PortAgent agent;
  Port* port = agent.m_ports->add("eth0", 1);
  m_broker.addAgent(&agent);

  const core::CimBroker::Request outer(m_broker);
  const core::CimBroker::Request inner(m_broker);
  EXPECT_THAT(walk("Test_Port"), ElementsAre(port));
}

TEST_F(CimBroker, AdmitsOneThreadsRequestAtATime) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 200;
  Agent agent;
  agent.serve("Test_Fan")->serve("1");
  m_broker.addAgent(&agent);
  int unguarded = 0;
  std::atomic<int> inside{0};
  std::atomic<int> overlaps{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      for (int round = 0; round < kRounds; ++round) {
        const core::CimBroker::Request request(m_broker);
        overlaps += inside.fetch_add(1) != 0 ? 1 : 0;
        { const core::CimBroker::Request again(m_broker); }
        unguarded += static_cast<int>(m_broker.getInstances("Test_Fan").count());
        inside.fetch_sub(1);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }

  EXPECT_EQ(overlaps.load(), 0);
  EXPECT_EQ(unguarded, kThreads * kRounds);
}

TEST_F(CimBroker, TakesAgentsWhileARequestIsHeldElsewhere) {
  Agent agent;
  const core::CimBroker::Request request(m_broker);

  std::thread([&] { m_broker.addAgent(&agent); }).join();

  EXPECT_THAT(m_broker.getAgents(), ElementsAre(&agent));
}

TEST(GetCimBroker, GivesTheOneBrokerOfTheProcess) {
  EXPECT_EQ(&core::GetCimBroker(), &core::GetCimBroker());
  EXPECT_THAT(core::GetCimBroker().getAgents(), IsEmpty());
}

}  // namespace
