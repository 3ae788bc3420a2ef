// A server over the model and an agent that looks for files ahead.

#ifndef ORVEX_TESTS_WBEM_LOOKINGFIXTURE_H_
#define ORVEX_TESTS_WBEM_LOOKINGFIXTURE_H_

#include <future>
#include <gmock/gmock.h>
#include <set>
#include <string>
#include <vector>

#include "core/LookAhead.h"
#include "tests/support/WaitUntil.h"
#include "tests/wbem/ServerFixture.h"

namespace test {

// Expects that nobody waits for it under the broker's request.
class LookingAgent : public FakeAgent, public core::FileLooker {
 public:
  explicit LookingAgent(core::CimBroker& broker) : FakeAgent("Looking"), m_broker(broker) {}

  void lookAhead(const std::set<std::string>& classNames) override {
    lookedFor.push_back(classNames);
    m_others.push_back(std::async(std::launch::async,
                                  [this] { const core::CimBroker::Request request(m_broker); }));
    EXPECT_EQ(m_others.back().wait_for(kDeadline), std::future_status::ready);
  }

  std::vector<std::set<std::string>> lookedFor;

 private:
  core::CimBroker& m_broker;
  std::vector<std::future<void>> m_others;
};

class LookingFixture : public ServerFixture {
 protected:
  LookingFixture() {
    m_broker.addAgent(&m_looking);
    for (FakeProvider* provider : {&m_agent.devices, &m_agent.ports, &m_agent.links}) {
      provider->onEnumeration = [] { EXPECT_TRUE(core::LookAhead::isInForce()); };
    }
  }

  LookingAgent m_looking{m_broker};
};

}  // namespace test

#endif  // ORVEX_TESTS_WBEM_LOOKINGFIXTURE_H_
