#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "host/LoginGate.h"

namespace {

using host::LoginGate;
using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

using Verdict = LoginGate::Verdict;

const std::string kRight = "Basic YW5uYTpzZWNyZXQ=";  // anna:secret
const std::string kWrong = "Basic YW5uYTp3cm9uZw==";  // anna:wrong
const LoginGate::Origin kLoopback{"127.0.0.1", true, false};
const LoginGate::Origin kEncrypted{"192.0.2.7", false, true};
const LoginGate::Origin kInTheClear{"192.0.2.7", false, false};

// Knows anna, a reader, and counts what it is asked.
class FakeAuthenticator final : public host::Authenticator {
 public:
  [[nodiscard]] std::optional<wbem::Role> check(const std::string& user,
                                                const std::string& password) override {
    ++checks;
    return user == "anna" && password == "secret" ? std::optional(wbem::Role::Reader)
                                                  : std::nullopt;
  }
  [[nodiscard]] std::uint64_t revision() override { return currentRevision; }

  unsigned checks = 0;
  std::uint64_t currentRevision = 7;
};

class FakeAudit final : public wbem::Audit {
 public:
  void write(const wbem::AuditRecord& record) noexcept override {
    records.push_back(record.action + " of " + record.caller.user + " from " +
                      record.caller.address + ": " + record.result);
  }

  std::vector<std::string> records;
};

class LoginGateTest : public testing::Test {
 protected:
  host::LoginThrottle::Clock::time_point m_now{std::chrono::hours(1)};
  FakeAuthenticator m_authenticator;
  FakeAudit m_audit;
  LoginGate m_gate{m_authenticator, m_audit, [this] { return m_now; }};
};

TEST_F(LoginGateTest, PassesTheRightLoginWithItsRole) {
  const LoginGate::Decision decision = m_gate.admit(kRight, kEncrypted);
  EXPECT_EQ(decision.verdict, Verdict::Passed);
  EXPECT_EQ(decision.caller.user, "anna");
  EXPECT_EQ(decision.caller.address, "192.0.2.7");
  EXPECT_EQ(decision.caller.role, wbem::Role::Reader);
  EXPECT_EQ(decision.delay, milliseconds(0));
  EXPECT_THAT(m_audit.records, IsEmpty());
}

TEST_F(LoginGateTest, AsksForALoginWithoutDelay) {
  const LoginGate::Decision decision = m_gate.admit("", kLoopback);
  EXPECT_EQ(decision.verdict, Verdict::Unauthorized);
  EXPECT_EQ(decision.delay, milliseconds(0));
  EXPECT_EQ(m_authenticator.checks, 0u);
}

TEST_F(LoginGateTest, DelaysAndRecordsAWrongLogin) {
  const LoginGate::Decision decision = m_gate.admit(kWrong, kEncrypted);
  EXPECT_EQ(decision.verdict, Verdict::Unauthorized);
  EXPECT_EQ(decision.delay, milliseconds(500));
  EXPECT_THAT(m_audit.records, ElementsAre("Login of anna from 192.0.2.7: refused"));
}

TEST_F(LoginGateTest, CountsADamagedLoginAsAFailure) {
  EXPECT_EQ(m_gate.admit("Basic !", kEncrypted).delay, milliseconds(500));
  EXPECT_EQ(m_authenticator.checks, 0u);
  EXPECT_THAT(m_audit.records, ElementsAre("Login of  from 192.0.2.7: refused"));
}

TEST_F(LoginGateTest, TriesNoPasswordWhileARefusalWaits) {
  static_cast<void>(m_gate.admit(kWrong, kEncrypted));
  const LoginGate::Decision decision = m_gate.admit(kRight, kEncrypted);
  EXPECT_EQ(decision.verdict, Verdict::Unauthorized);
  EXPECT_EQ(decision.delay, milliseconds(500));
  EXPECT_EQ(m_authenticator.checks, 1u);

  m_now += decision.delay;
  EXPECT_EQ(m_gate.admit(kRight, kEncrypted).verdict, Verdict::Passed);
}

TEST_F(LoginGateTest, TriesNoRememberedPasswordWhileARefusalWaits) {
  EXPECT_EQ(m_gate.admit(kRight, kEncrypted).verdict, Verdict::Passed);
  static_cast<void>(m_gate.admit(kWrong, kEncrypted));
  EXPECT_EQ(m_gate.admit(kRight, kEncrypted).verdict, Verdict::Unauthorized);
}

TEST_F(LoginGateTest, KeepsTheCountOfFailuresOverASuccess) {
  m_now += m_gate.admit(kWrong, kEncrypted).delay;
  EXPECT_EQ(m_gate.admit(kRight, kEncrypted).verdict, Verdict::Passed);
  EXPECT_EQ(m_gate.admit(kWrong, kEncrypted).delay, milliseconds(1000));
}

TEST_F(LoginGateTest, ChecksALoginOnceInAWhile) {
  static_cast<void>(m_gate.admit(kRight, kEncrypted));
  static_cast<void>(m_gate.admit(kRight, kEncrypted));
  EXPECT_EQ(m_authenticator.checks, 1u);
  m_now += host::VerifiedLogins::kLifetime;
  static_cast<void>(m_gate.admit(kRight, kEncrypted));
  EXPECT_EQ(m_authenticator.checks, 2u);
}

TEST_F(LoginGateTest, ChecksAnewWhenTheUsersHaveChanged) {
  static_cast<void>(m_gate.admit(kRight, kEncrypted));
  ++m_authenticator.currentRevision;
  static_cast<void>(m_gate.admit(kRight, kEncrypted));
  EXPECT_EQ(m_authenticator.checks, 2u);
}

TEST_F(LoginGateTest, TakesNoPasswordInTheClearFromANetwork) {
  EXPECT_EQ(m_gate.admit(kRight, kInTheClear).verdict, Verdict::InTheClear);
  EXPECT_EQ(m_gate.admit(kWrong, kInTheClear).verdict, Verdict::InTheClear);
  EXPECT_EQ(m_authenticator.checks, 0u);
}

TEST_F(LoginGateTest, PassesEverybodyWhereNobodyHasToLogIn) {
  host::NoAuthenticator nobody;
  LoginGate gate(nobody, m_audit);
  EXPECT_FALSE(gate.demandsLogin());
  const LoginGate::Decision decision = gate.admit("", kLoopback);
  EXPECT_EQ(decision.verdict, Verdict::Passed);
  EXPECT_EQ(decision.caller.user, "");
  EXPECT_EQ(decision.caller.address, "127.0.0.1");
  EXPECT_EQ(decision.caller.role, wbem::Role::Operator);
}

}  // namespace
