#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <future>
#include <gmock/gmock.h>
#include <memory>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

#include "daemon/Posix/LocalAuthenticator.h"
#include "daemon/Posix/SystemUsers.h"
#include "platform/Mutex.h"
#include "tests/support/FakeClock.h"
#include "tests/support/LogCapture.h"
#include "tests/support/WaitUntil.h"

namespace {

using quorveld::LocalAuthenticator;
using std::chrono::milliseconds;
using testing::HasSubstr;
using wbem::Role;

constexpr std::uint32_t kStranger = 64242;  // no user's number
constexpr std::uint32_t kDaemon = 1;        // a user of every Debian system
constexpr milliseconds kShort{20};

Role roleOf(LocalAuthenticator& users, std::uint32_t user) {
  const auto guest = users.admit(user).guest;
  EXPECT_TRUE(guest.has_value());
  return guest ? guest->role : Role::Reader;
}

TEST(LocalAuthenticator, DemandsNoLoginAndChecksNone) {
  LocalAuthenticator users({});
  EXPECT_FALSE(users.demandsLogin());
  EXPECT_EQ(users.check("root", "secret", "127.0.0.1"), std::nullopt);
}

TEST(LocalAuthenticator, LetsRootAndTheServicesOwnUserOperate) {
  LocalAuthenticator users({});
  EXPECT_EQ(roleOf(users, 0), Role::Operator);
  EXPECT_EQ(roleOf(users, geteuid()), Role::Operator);
  EXPECT_EQ(users.admit(0).guest->user, "root");
}

TEST(LocalAuthenticator, LetsEverybodyElseOfThisMachineRead) {
  LocalAuthenticator users({});
  EXPECT_EQ(roleOf(users, kStranger), Role::Reader);
  EXPECT_EQ(users.admit(kStranger).guest->user, "64242");
}

TEST(LocalAuthenticator, LetsThoseOfItsListOperate) {
  const auto name = quorveld::findUserName(kDaemon);
  if (!name || geteuid() == kDaemon) {
    GTEST_SKIP() << "this machine has no user of number 1 but this one";
  }
  LocalAuthenticator byName({*name});
  EXPECT_EQ(roleOf(byName, kDaemon), Role::Operator);
  LocalAuthenticator byGroup({"@" + *name});
  EXPECT_EQ(roleOf(byGroup, kDaemon), Role::Operator);
  LocalAuthenticator others({"root", "@nobodys-group"});
  EXPECT_EQ(roleOf(others, kDaemon), Role::Reader);
}

TEST(LocalAuthenticator, LetsNobodyInWhoIsNotKnown) {
  LocalAuthenticator users({});
  const auto admission = users.admit(std::nullopt);
  EXPECT_FALSE(admission.guest.has_value());
  EXPECT_FALSE(admission.isBusy);
}

// A directory of users that answers when the test says so. Questions may outlive the test.
class Directory {
 public:
  LocalAuthenticator::Entry find(std::uint32_t user, const std::vector<std::string>& operators) {
    const platform::Lock lock(m_mutex);
    ++m_questions;
    while (m_isSilent || m_silentAbout == user) {
      m_changed.wait(m_mutex);
    }
    const std::string name = "user" + std::to_string(user);
    return {name, !operators.empty() && operators.front() == name};
  }
  void setSilent(bool isSilent) {
    const platform::Lock lock(m_mutex);
    m_isSilent = isSilent;
    m_changed.notify_all();
  }
  // Silent about one user alone, where one is given.
  void setSilentAbout(std::optional<std::uint32_t> user) {
    const platform::Lock lock(m_mutex);
    m_silentAbout = user;
    m_changed.notify_all();
  }
  [[nodiscard]] unsigned questions() const {
    const platform::Lock lock(m_mutex);
    return m_questions;
  }

 private:
  mutable platform::Mutex m_mutex;
  std::condition_variable_any m_changed;
  bool m_isSilent ORVEX_GUARDED_BY(m_mutex) = false;
  std::optional<std::uint32_t> m_silentAbout ORVEX_GUARDED_BY(m_mutex);
  unsigned m_questions ORVEX_GUARDED_BY(m_mutex) = 0;
};

class UsersOfADirectory : public testing::Test {
 protected:
  void TearDown() override {
    m_directory->setSilentAbout(std::nullopt);
    m_directory->setSilent(false);
  }

  [[nodiscard]] std::unique_ptr<LocalAuthenticator> make(milliseconds patience,
                                                         std::vector<std::string> operators = {
                                                             "user1001"}) {
    auto users = std::make_unique<LocalAuthenticator>(
        std::move(operators), m_clock,
        [directory = m_directory](std::uint32_t user, const std::vector<std::string>& list) {
          return directory->find(user, list);
        },
        patience);
    m_ownQuestions = m_directory->questions();
    return users;
  }
  // Those about others than the user of the test.
  [[nodiscard]] unsigned questions() const { return m_directory->questions() - m_ownQuestions; }
  void awaitQuestions(unsigned count) const {
    EXPECT_TRUE(test::waitUntil([&] { return questions() == count; })) << questions();
  }
  using Admissions = std::vector<std::future<LocalAuthenticator::Admission>>;
  static std::future<LocalAuthenticator::Admission> admitLater(LocalAuthenticator& users,
                                                               std::uint32_t user) {
    return std::async(std::launch::async, [&users, user] { return users.admit(user); });
  }
  static int countReady(const Admissions& admissions) {
    return static_cast<int>(
        std::count_if(admissions.begin(), admissions.end(), [](const auto& admission) {
          return admission.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
        }));
  }
  static std::size_t countGuests(Admissions& admissions) {
    return static_cast<std::size_t>(
        std::count_if(admissions.begin(), admissions.end(),
                      [](auto& admission) { return admission.get().guest.has_value(); }));
  }

  const std::shared_ptr<Directory> m_directory = std::make_shared<Directory>();
  test::FakeClock m_clock;
  unsigned m_ownQuestions = 0;
};

TEST_F(UsersOfADirectory, AreRememberedForAWhile) {
  const auto users = make(test::kDeadline);
  EXPECT_EQ(roleOf(*users, 1000), Role::Reader);
  EXPECT_EQ(roleOf(*users, 1001), Role::Operator);
  EXPECT_EQ(users->admit(1000).guest->user, "user1000");
  EXPECT_EQ(questions(), 2U);
  m_clock.sleepFor(std::chrono::seconds(5));
  EXPECT_EQ(roleOf(*users, 1000), Role::Reader);
  EXPECT_EQ(questions(), 3U);
}

TEST_F(UsersOfADirectory, AreRememberedUpToABound) {
  const auto users = make(test::kDeadline);
  for (std::uint32_t user = 100'000; user < 101'024; ++user) {
    EXPECT_EQ(roleOf(*users, user), Role::Reader);
  }
  EXPECT_EQ(questions(), 1024U);
  EXPECT_EQ(roleOf(*users, 100'000), Role::Reader);
  EXPECT_EQ(questions(), 1024U);
  EXPECT_EQ(roleOf(*users, 101'024), Role::Reader);
  EXPECT_EQ(roleOf(*users, 100'000), Role::Reader);
  EXPECT_EQ(questions(), 1026U);
}

TEST_F(UsersOfADirectory, DoNotIncludeRootAndTheServicesOwn) {
  const auto users = make(kShort);
  m_directory->setSilent(true);
  EXPECT_EQ(roleOf(*users, 0), Role::Operator);
  EXPECT_EQ(roleOf(*users, geteuid()), Role::Operator);
  EXPECT_EQ(questions(), 0U);
}

TEST_F(UsersOfADirectory, AreToldToComeAgainWhileItDoesNotAnswer) {
  const test::LogCapture log;
  const auto users = make(kShort);
  m_directory->setSilent(true);
  for (int i = 0; i < 3; ++i) {
    const auto admission = users->admit(1001);
    EXPECT_FALSE(admission.guest.has_value());
    EXPECT_TRUE(admission.isBusy);
  }
  EXPECT_EQ(questions(), 1U);
  EXPECT_THAT(log.messages("quorveld::LocalAuthenticator::lookUp"),
              testing::ElementsAre(HasSubstr("within 20 ms who user 1001 is")));
  m_directory->setSilent(false);
  EXPECT_TRUE(test::waitUntil([&] { return users->admit(1001).guest.has_value(); }));
  EXPECT_EQ(roleOf(*users, 1001), Role::Operator);
}

TEST_F(UsersOfADirectory, AreKnownWhileItIsSilentAboutAnother) {
  const auto users = make(milliseconds(200));
  m_directory->setSilentAbout(1000);
  EXPECT_TRUE(users->admit(1000).isBusy);  // whose question stays away
  EXPECT_EQ(roleOf(*users, 1001), Role::Operator);
}

TEST_F(UsersOfADirectory, ReadByTheirNumbersWhereNobodyIsListed) {
  const auto users = make(kShort, {});
  m_directory->setSilent(true);
  EXPECT_EQ(roleOf(*users, 1000), Role::Reader);
  EXPECT_EQ(users->admit(1000).guest->user, "1000");
}

TEST_F(UsersOfADirectory, ReadByTheirNumbersWhereNobodyIsListedAndTooManyWait) {
  const auto users = make(test::kDeadline, {});
  m_directory->setSilent(true);
  Admissions admissions;
  for (std::uint32_t user = 1000; user <= 1000 + LocalAuthenticator::kMostInLine; ++user) {
    admissions.push_back(admitLater(*users, user));
  }
  EXPECT_TRUE(test::waitUntil([&] { return countReady(admissions) == 1; }));
  m_directory->setSilent(false);
  EXPECT_EQ(countGuests(admissions), LocalAuthenticator::kMostInLine + 1);
}

TEST_F(UsersOfADirectory, AreAskedAboutOnceForAllWhoWaitAndNotTooManyWait) {
  const auto users = make(test::kDeadline);
  m_directory->setSilent(true);
  Admissions admissions;
  for (std::size_t i = 0; i <= LocalAuthenticator::kMostOfUser; ++i) {
    admissions.push_back(admitLater(*users, 1001));
  }
  EXPECT_TRUE(test::waitUntil([&] { return countReady(admissions) == 1; }));
  awaitQuestions(1);
  m_directory->setSilent(false);
  EXPECT_EQ(countGuests(admissions), LocalAuthenticator::kMostOfUser);
  EXPECT_EQ(questions(), 1U);
}

TEST_F(UsersOfADirectory, WaitInALineThatIsBounded) {
  const auto users = make(test::kDeadline);
  m_directory->setSilent(true);
  Admissions admissions;
  for (std::uint32_t user = 1000; user <= 1000 + LocalAuthenticator::kMostInLine; ++user) {
    admissions.push_back(admitLater(*users, user));
  }
  EXPECT_TRUE(test::waitUntil([&] { return countReady(admissions) == 1; }));
  EXPECT_EQ(roleOf(*users, 0), Role::Operator);
  m_directory->setSilent(false);
  EXPECT_EQ(countGuests(admissions), LocalAuthenticator::kMostInLine);
}

TEST_F(UsersOfADirectory, AreServedByWhatIsKnownWhileTheyAreAskedAboutAnew) {
  const auto users = make(test::kDeadline);
  EXPECT_EQ(roleOf(*users, 1001), Role::Operator);
  m_clock.sleepFor(std::chrono::seconds(5));
  m_directory->setSilent(true);
  auto asking = admitLater(*users, 1001);
  awaitQuestions(2);
  EXPECT_EQ(roleOf(*users, 1001), Role::Operator);
  m_directory->setSilent(false);
  EXPECT_EQ(asking.get().guest->role, Role::Operator);
  EXPECT_EQ(questions(), 2U);
}

}  // namespace
