#include <algorithm>
#include <atomic>
#include <future>
#include <gmock/gmock.h>
#include <string>
#include <utility>
#include <vector>

#include "daemon/LoginGate.h"
#include "tests/support/WaitUntil.h"

namespace {

using quorveld::LoginGate;
using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

using Verdict = LoginGate::Verdict;

const std::string kRight = "Basic YW5uYTpzZWNyZXQ=";  // anna:secret
const std::string kWrong = "Basic YW5uYTp3cm9uZw==";  // anna:wrong
const std::string kBert = "Basic YmVydDpzZWNyZXQ=";   // bert:secret
const std::string kCarl = "Basic Y2FybDp3cm9uZw==";   // carl:wrong
const LoginGate::Origin kLoopback{"127.0.0.1", true, false};
const LoginGate::Origin kEncrypted{"192.0.2.7", false, true};
const LoginGate::Origin kInTheClear{"192.0.2.7", false, false};

// Knows anna, a reader, and counts what it is asked.
class FakeAuthenticator final : public quorveld::Authenticator {
 public:
  [[nodiscard]] std::optional<wbem::Role> check(const std::string& user,
                                                const std::string& password,
                                                const std::string& address) override {
    ++checks;
    askedFrom = address;
    return user == "anna" && password == "secret" ? std::optional(wbem::Role::Reader)
                                                  : std::nullopt;
  }
  [[nodiscard]] std::uint64_t revision() override { return currentRevision; }

  unsigned checks = 0;
  std::string askedFrom;
  std::uint64_t currentRevision = 7;
};

// Takes everybody whose password is "secret"; who is not anna waits until the test says so.
class SlowAuthenticator final : public quorveld::Authenticator {
 public:
  [[nodiscard]] std::optional<wbem::Role> check(const std::string& user,
                                                const std::string& password,
                                                const std::string& /*address*/) override {
    ++checks;
    if (user != "anna") {
      m_released.wait();
    }
    return password == "secret" ? std::optional(wbem::Role::Reader) : std::nullopt;
  }
  [[nodiscard]] std::uint64_t revision() override { return currentRevision; }
  void release() { m_release.set_value(); }

  std::atomic<unsigned> checks{0};
  std::atomic<std::uint64_t> currentRevision{7};

 private:
  std::promise<void> m_release;
  const std::shared_future<void> m_released{m_release.get_future()};
};

class FakeAudit final : public wbem::Audit {
 public:
  void write(const wbem::AuditRecord& record) noexcept override {
    records.push_back(record.action + " of " + record.caller.user + " from " +
                      record.caller.address + ": " + record.result +
                      (record.caller.role ? ", with a role" : ""));
    for (const auto& [name, value] : record.details) {
      records.back() += ", " + name + " " + value;
    }
  }

  std::vector<std::string> records;
};

class LoginGateTest : public testing::Test {
 protected:
  quorveld::LoginThrottle::Clock::time_point m_now{std::chrono::hours(1)};
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
  EXPECT_EQ(m_authenticator.askedFrom, "192.0.2.7");
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
  EXPECT_THAT(m_audit.records, ElementsAre("Login of anna from 192.0.2.7: refused"));

  m_now += decision.delay;
  EXPECT_EQ(m_gate.admit(kRight, kEncrypted).verdict, Verdict::Passed);
}

TEST_F(LoginGateTest, RecordsHowManyLoginsItRefusedUncheckedWithTheNextFailure) {
  const LoginGate::Origin other{"192.0.2.8", false, true};
  const milliseconds delay = m_gate.admit(kWrong, kEncrypted).delay;
  static_cast<void>(m_gate.admit(kWrong, kEncrypted));
  static_cast<void>(m_gate.admit(kRight, kEncrypted));
  static_cast<void>(m_gate.admit(kWrong, other));
  m_now += delay;
  m_now += m_gate.admit(kWrong, kEncrypted).delay;
  static_cast<void>(m_gate.admit(kWrong, kEncrypted));
  EXPECT_THAT(
      m_audit.records,
      ElementsAre("Login of anna from 192.0.2.7: refused", "Login of anna from 192.0.2.8: refused",
                  "Login of anna from 192.0.2.7: refused, 2 before unchecked",
                  "Login of anna from 192.0.2.7: refused"));
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
  m_now += quorveld::VerifiedLogins::kLifetime;
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

// A login is not looked at, right or wrong, and wherever it comes from.
TEST_F(LoginGateTest, PassesAnyLoginWhereNobodyHasToLogIn) {
  quorveld::NoAuthenticator nobody;
  LoginGate gate(nobody, m_audit);
  for (const std::string& login : {kRight, kWrong, std::string("Basic !"), std::string("x")}) {
    for (const LoginGate::Origin& origin : {kLoopback, kInTheClear}) {
      const LoginGate::Decision decision = gate.admit(login, origin);
      EXPECT_EQ(decision.verdict, Verdict::Passed) << login;
      EXPECT_EQ(decision.caller.user, "") << login;
      EXPECT_EQ(decision.caller.role, wbem::Role::Operator) << login;
      EXPECT_EQ(decision.delay, milliseconds(0)) << login;
    }
  }
  EXPECT_THAT(m_audit.records, IsEmpty());
}

TEST_F(LoginGateTest, PassesEverybodyWhereNobodyHasToLogIn) {
  quorveld::NoAuthenticator nobody;
  LoginGate gate(nobody, m_audit);
  EXPECT_FALSE(gate.demandsLogin());
  const LoginGate::Decision decision = gate.admit("", kLoopback);
  EXPECT_EQ(decision.verdict, Verdict::Passed);
  EXPECT_EQ(decision.caller.user, "");
  EXPECT_EQ(decision.caller.address, "127.0.0.1");
  EXPECT_EQ(decision.caller.role, wbem::Role::Operator);
}

// The users of this machine who come by the local socket all have the same address.
TEST_F(LoginGateTest, KeepsTheFailuresOfLocalUsersApart) {
  const LoginGate::Origin first{"unix", true, false, 1000, "user 1000"};
  const LoginGate::Origin second{"unix", true, false, 1001, "user 1001"};
  EXPECT_EQ(m_gate.admit(kWrong, first).delay, milliseconds(500));
  EXPECT_EQ(m_gate.admit(kRight, second).verdict, Verdict::Passed);
  EXPECT_EQ(m_gate.admit(kRight, first).verdict, Verdict::Unauthorized);
  EXPECT_THAT(m_audit.records, ElementsAre("Login of anna from unix: refused, peer user 1000"));
}

// Whether it can be told who somebody is, is another's to say.
class HalfKnowing final : public quorveld::Authenticator {
 public:
  [[nodiscard]] bool demandsLogin() const override { return false; }
  [[nodiscard]] Admission admit(std::optional<std::uint32_t> peer) override {
    return peer ? Admission{std::nullopt, true} : Admission{};
  }
  [[nodiscard]] std::optional<wbem::Role> check(const std::string& /*user*/,
                                                const std::string& /*password*/,
                                                const std::string& /*address*/) override {
    return std::nullopt;
  }
};

TEST_F(LoginGateTest, TellsWhoIsUnknownFromWhoIsNotKnownYet) {
  HalfKnowing users;
  LoginGate gate(users, m_audit);
  EXPECT_EQ(gate.admit("", kLoopback).verdict, Verdict::Unknown);
  const LoginGate::Decision decision = gate.admit("", {"unix", true, false, 1000, "user 1000"});
  EXPECT_EQ(decision.verdict, Verdict::Busy);
  EXPECT_EQ(decision.delay, LoginGate::kBusyDelay);
  EXPECT_THAT(m_audit.records, IsEmpty());
}

// Many ask at a time, and the authenticator holds some of them up.
class LoginGateOfManyTest : public testing::Test {
 protected:
  void TearDown() override { release(); }

  // Each asks from an address of its own, unless one is given.
  void admitLater(const std::string& authorization, std::string address = {}) {
    if (address.empty()) {
      address = "192.0.2." + std::to_string(m_decisions.size() + 1);
    }
    m_decisions.push_back(std::async(std::launch::async, [this, authorization, address] {
      return m_gate.admit(authorization, {address, false, true});
    }));
  }
  [[nodiscard]] bool waitForChecks(unsigned count) const {
    return test::waitUntil([&] { return m_authenticator.checks == count; });
  }
  [[nodiscard]] bool waitForDecisions(int count) const {
    return test::waitUntil([&] {
      return std::count_if(m_decisions.begin(), m_decisions.end(), [](const auto& decision) {
               return decision.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
             }) == count;
    });
  }
  void release() {
    if (!std::exchange(m_isReleased, true)) {
      m_authenticator.release();
    }
  }
  [[nodiscard]] std::vector<Verdict> verdicts() {
    std::vector<Verdict> verdicts;
    for (auto& decision : m_decisions) {
      verdicts.push_back(decision.get().verdict);
    }
    return verdicts;
  }

  SlowAuthenticator m_authenticator;
  FakeAudit m_audit;
  LoginGate m_gate{m_authenticator, m_audit};
  bool m_isReleased = false;
  std::vector<std::future<LoginGate::Decision>> m_decisions;
};

TEST_F(LoginGateOfManyTest, PassesARememberedLoginWhileAnotherIsChecked) {
  ASSERT_EQ(m_gate.admit(kRight, kEncrypted).verdict, Verdict::Passed);
  admitLater(kBert);
  ASSERT_TRUE(waitForChecks(2));
  admitLater(kRight);
  EXPECT_TRUE(waitForDecisions(1));
  release();
  EXPECT_THAT(verdicts(), ElementsAre(Verdict::Passed, Verdict::Passed));
  EXPECT_EQ(m_authenticator.checks, 2u);
}

TEST_F(LoginGateOfManyTest, TurnsAwayWhoComesToAFullLine) {
  constexpr int kTooMany = 3;
  for (unsigned i = 0; i < LoginGate::kMostInLine + kTooMany; ++i) {
    admitLater(kBert);
  }
  EXPECT_TRUE(waitForDecisions(kTooMany));
  release();
  const std::vector<Verdict> all = verdicts();
  EXPECT_EQ(std::count(all.begin(), all.end(), Verdict::Busy), kTooMany);
  EXPECT_EQ(std::count(all.begin(), all.end(), Verdict::Passed), int{LoginGate::kMostInLine});
  // Those that waited found the login remembered.
  EXPECT_EQ(m_authenticator.checks, 1u);
  EXPECT_EQ(m_gate.admit(kCarl, kEncrypted).verdict, Verdict::Unauthorized);
}

TEST_F(LoginGateOfManyTest, DelaysWhoComesToAFullLine) {
  for (unsigned i = 0; i <= LoginGate::kMostInLine; ++i) {
    admitLater(kBert);
  }
  ASSERT_TRUE(waitForDecisions(1));
  EXPECT_EQ(m_gate.admit(kBert, kEncrypted).delay, LoginGate::kBusyDelay);
}

TEST_F(LoginGateOfManyTest, ChecksOneOfTheGuessesThatComeSideBySide) {
  for (unsigned i = 0; i < LoginGate::kMostInLine; ++i) {
    admitLater(kCarl, "192.0.2.7");
  }
  ASSERT_TRUE(waitForChecks(1));
  release();
  EXPECT_THAT(verdicts(), testing::Each(Verdict::Unauthorized));
  EXPECT_EQ(m_authenticator.checks, 1u);
  EXPECT_THAT(m_audit.records, ElementsAre("Login of carl from 192.0.2.7: refused"));
}

TEST_F(LoginGateOfManyTest, DoesNotRememberALoginWhoseUsersHaveChangedDuringItsCheck) {
  admitLater(kBert);
  ASSERT_TRUE(waitForChecks(1));
  ++m_authenticator.currentRevision;
  for (unsigned i = 0; i < LoginGate::kMostInLine; ++i) {
    admitLater(kRight);
  }
  ASSERT_TRUE(waitForDecisions(1));  // turned away, after a look at the revision
  release();
  static_cast<void>(verdicts());
  const unsigned checks = m_authenticator.checks;
  EXPECT_EQ(m_gate.admit(kBert, kEncrypted).verdict, Verdict::Passed);
  EXPECT_EQ(m_authenticator.checks, checks + 1);
}

}  // namespace
