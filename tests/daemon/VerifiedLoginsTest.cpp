#include <gmock/gmock.h>
#include <string>

#include "daemon/VerifiedLogins.h"

namespace {

class VerifiedLogins : public testing::Test {
 protected:
  quorveld::VerifiedLogins::Clock::time_point m_now{std::chrono::hours(1)};
  quorveld::VerifiedLogins m_logins{[this] { return m_now; }};
};

TEST_F(VerifiedLogins, KnowsALoginThatWasAdded) {
  m_logins.add({"anna", "secret"}, wbem::Role::Reader);
  EXPECT_EQ(m_logins.find({"anna", "secret"}), wbem::Role::Reader);
}

TEST_F(VerifiedLogins, KnowsNoOtherLogin) {
  m_logins.add({"anna", "secret"}, wbem::Role::Operator);
  EXPECT_FALSE(m_logins.find({"anna", "Secret"}));
  EXPECT_FALSE(m_logins.find({"anna", ""}));
  EXPECT_FALSE(m_logins.find({"ann", "asecret"}));
  EXPECT_FALSE(m_logins.find({"bert", "secret"}));
}

TEST_F(VerifiedLogins, ForgetsThemAfterTheirLifetimeHoweverOftenUsed) {
  m_logins.add({"anna", "secret"}, wbem::Role::Reader);
  m_now += quorveld::VerifiedLogins::kLifetime - std::chrono::milliseconds(1);
  EXPECT_TRUE(m_logins.find({"anna", "secret"}));
  m_now += std::chrono::milliseconds(1);
  EXPECT_FALSE(m_logins.find({"anna", "secret"}));
}

TEST_F(VerifiedLogins, ForgetsThemAllWhenCleared) {
  m_logins.add({"anna", "secret"}, wbem::Role::Reader);
  m_logins.clear();
  EXPECT_FALSE(m_logins.find({"anna", "secret"}));
}

TEST_F(VerifiedLogins, KeepsABoundedNumberUntilTheyEnd) {
  for (std::size_t i = 0; i <= quorveld::VerifiedLogins::kMost; ++i) {
    m_logins.add({"user" + std::to_string(i), "secret"}, wbem::Role::Reader);
  }
  EXPECT_TRUE(m_logins.find({"user0", "secret"}));
  EXPECT_FALSE(m_logins.find({"user" + std::to_string(quorveld::VerifiedLogins::kMost), "secret"}));

  m_now += quorveld::VerifiedLogins::kLifetime;
  m_logins.add({"late", "secret"}, wbem::Role::Reader);
  EXPECT_TRUE(m_logins.find({"late", "secret"}));
}

}  // namespace
