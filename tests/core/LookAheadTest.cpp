#include <gmock/gmock.h>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>

#include "core/LookAhead.h"
#include "tests/support/Throws.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LookingAgent : public core::CimAgent, public core::FileLooker {
 public:
  LookingAgent() : CimAgent("Looking") {}

  void lookAhead(const std::set<std::string>& classNames) override {
    EXPECT_FALSE(core::LookAhead::isInForce());
    if (classNames.contains("Test_Broken")) {
      throw std::runtime_error("no memory");
    }
    lookedFor = classNames;
  }

  std::set<std::string> lookedFor;
};

class LookAhead : public testing::Test {
 protected:
  LookAhead() {
    m_broker.addAgent(&m_plain);
    m_broker.addAgent(&m_looking);
  }

  core::CimAgent m_plain{"Plain"};
  LookingAgent m_looking;
  core::CimBroker m_broker;
};

TEST_F(LookAhead, AsksTheAgentsThatLook) {
  const core::LookAhead ahead(m_broker, {"Test_File", "Test_Port"});
  EXPECT_THAT(m_looking.lookedFor, ElementsAre("Test_File", "Test_Port"));
}

TEST_F(LookAhead, LooksForNothingWithoutAClass) {
  m_looking.lookedFor = {"as before"};
  const core::LookAhead ahead(m_broker, {});
  EXPECT_TRUE(core::LookAhead::isInForce());
  EXPECT_THAT(m_looking.lookedFor, ElementsAre("as before"));
}

TEST_F(LookAhead, IsInForceOnItsThreadUntilTheLastHasGone) {
  EXPECT_FALSE(core::LookAhead::isInForce());
  {
    const core::LookAhead outer(m_broker, {});
    { const core::LookAhead inner(m_broker, {}); }
    EXPECT_TRUE(core::LookAhead::isInForce());
    std::thread([] { EXPECT_FALSE(core::LookAhead::isInForce()); }).join();
  }
  EXPECT_FALSE(core::LookAhead::isInForce());
}

TEST_F(LookAhead, ThrowsWhatAnAgentThrowsAndIsNotInForceThen) {
  EXPECT_THAT([this] { const core::LookAhead ahead(m_broker, {"Test_Broken"}); },
              test::ThrowsExactly<std::runtime_error>("no memory"));
  EXPECT_FALSE(core::LookAhead::isInForce());
  EXPECT_THAT(m_looking.lookedFor, IsEmpty());
}

}  // namespace
