#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <gmock/gmock.h>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "Utils/Ascii.h"
#include "daemon/AuditQueue.h"
#include "platform/Mutex.h"
#include "tests/support/WaitUntil.h"

namespace {

using quorveld::AuditQueue;
using std::chrono::milliseconds;
using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

// Takes records while it may; keeps what it is told.
class FakeSink final : public quorveld::AuditSink {
 public:
  [[nodiscard]] bool write(const wbem::AuditRecord& record,
                           milliseconds /*patience*/) noexcept override {
    if (isStuck) {
      ++tries;
      return false;
    }
    const platform::Lock lock(m_mutex);
    while (m_isHeld) {
      m_changed.wait(m_mutex);
    }
    m_written.push_back(textOf(record));
    return true;
  }
  void writeElsewhere(const wbem::AuditRecord& record) noexcept override {
    const platform::Lock lock(m_mutex);
    m_elsewhere.push_back(textOf(record));
  }

  [[nodiscard]] std::vector<std::string> written() const {
    const platform::Lock lock(m_mutex);
    return m_written;
  }
  [[nodiscard]] std::vector<std::string> elsewhere() const {
    const platform::Lock lock(m_mutex);
    return m_elsewhere;
  }

  // A sink that is held comes back with the record when it is let go.
  void hold(bool isHeld) {
    const platform::Lock lock(m_mutex);
    m_isHeld = isHeld;
    m_changed.notify_all();
  }

  std::atomic<bool> isStuck{false};
  std::atomic<unsigned> tries{0};

 private:
  static std::string textOf(const wbem::AuditRecord& record) {
    std::string text = record.action + " of " + record.caller.user + ": " + record.result;
    for (const auto& [name, value] : record.details) {
      text.append(", ").append(name).append(" ").append(value);
    }
    return text;
  }

  mutable platform::Mutex m_mutex;
  std::vector<std::string> m_written ORVEX_GUARDED_BY(m_mutex);
  std::vector<std::string> m_elsewhere ORVEX_GUARDED_BY(m_mutex);
  std::condition_variable_any m_changed;
  bool m_isHeld ORVEX_GUARDED_BY(m_mutex) = false;
};

// Knows one method, under its name in any case.
std::string findAction(const std::string& action) {
  return utils::isSameIgnoringCase(action, "Try") ? "Try" : "";
}

wbem::AuditRecord recordOf(const std::string& action, const std::string& result,
                           const std::string& user = "anna",
                           const std::string& address = "192.0.2.7") {
  return {{user, address, wbem::Role::Operator}, action, result, "target", {}};
}

class AuditQueueTest : public testing::Test {
 protected:
  ~AuditQueueTest() override { m_sink.isStuck = false; }

  // Has the queue give up soon at its end.
  void shortenFarewell() {
    m_limits.farewell = milliseconds(50);
    m_queue = std::make_unique<AuditQueue>(m_sink, findAction, m_limits);
  }
  void awaitRecords(std::size_t count) const {
    EXPECT_TRUE(test::waitUntil([&] { return m_sink.written().size() >= count; }))
        << m_sink.written().size();
  }
  // A queue that ends hands over all that it has.
  void end() { m_queue.reset(); }

  // Fails as one user after the other, so that each failure has a record.
  void failAsUsers(int count) {
    for (int i = 0; i < count; ++i) {
      m_queue->write(recordOf("Try", "5", "user" + std::to_string(i)));
    }
  }
  // Waits until the queue has looked at everything again.
  void awaitTries() const {
    const unsigned tries = m_sink.tries;
    EXPECT_TRUE(test::waitUntil([&] { return m_sink.tries > tries + 2; }));
  }
  // Returns the numbers of records that were told to be lost.
  [[nodiscard]] std::vector<unsigned> lossesTold() const {
    constexpr const char* kBegin = "Audit of : ";
    std::vector<unsigned> losses;
    for (const std::string& text : m_sink.written()) {
      if (text.starts_with(kBegin)) {
        losses.push_back(static_cast<unsigned>(std::stoul(text.substr(std::strlen(kBegin)))));
      }
    }
    return losses;
  }
  void awaitRecord(const std::string& text) const {
    EXPECT_TRUE(test::waitUntil([&] {
      const std::vector<std::string> written = m_sink.written();
      return std::find(written.begin(), written.end(), text) != written.end();
    })) << text
        << testing::PrintToString(m_sink.written());
  }

  static constexpr int kMostWaiting = 40;
  static constexpr int kMostOfAll = 120;

  std::atomic<bool> m_isClockBroken{false};
  std::atomic<unsigned> m_faults{0};
  std::atomic<std::int64_t> m_seconds{3600};
  FakeSink m_sink;
  AuditQueue::Limits m_limits{
      .mostWaiting = kMostWaiting,
      .mostOfAll = kMostOfAll,
      .patience = milliseconds(1),
      .courtesy = test::kDeadline,
      .farewell = test::kDeadline,
      .now = [this] {
        if (m_isClockBroken) {
          ++m_faults;
          throw 7;  // NOLINT(hicpp-exception-baseclass): whatever it is
        }
        return std::chrono::steady_clock::time_point(std::chrono::seconds(m_seconds));
      }};
  std::unique_ptr<AuditQueue> m_queue = std::make_unique<AuditQueue>(m_sink, findAction, m_limits);
};

TEST_F(AuditQueueTest, HandsRecordsOverInTheirOrder) {
  m_queue->write(recordOf("InstallFromURI", "4096"));
  m_queue->write(recordOf("ModifyInstance", "CIM_ERR_SUCCESS", "bert"));
  awaitRecords(2);
  EXPECT_THAT(m_sink.written(), ElementsAre("InstallFromURI of anna: 4096",
                                            "ModifyInstance of bert: CIM_ERR_SUCCESS"));
}

TEST_F(AuditQueueTest, HasARecordHandedOverBeforeItsWriterGoesOn) {
  for (std::size_t count = 1; count <= 100; ++count) {
    m_queue->write(recordOf("Try", "0"));
    ASSERT_THAT(m_sink.written(), SizeIs(count));
  }
}

TEST_F(AuditQueueTest, LetsAWriterGoOnWhoseRecordIsNotTakenInAMoment) {
  m_limits.courtesy = milliseconds(1);
  m_queue = std::make_unique<AuditQueue>(m_sink, findAction, m_limits);
  m_sink.hold(true);
  m_queue->write(recordOf("Try", "0"));
  EXPECT_THAT(m_sink.written(), IsEmpty());
  m_sink.hold(false);
  awaitRecords(1);
}

TEST_F(AuditQueueTest, HoldsNobodyUpWhileTheSinkIsStuck) {
  m_sink.isStuck = true;
  const auto begin = std::chrono::steady_clock::now();
  for (int i = 0; i < 20; ++i) {
    m_queue->write(recordOf("Try", "0"));
  }
  // Each would wait that long for a sink that is only behind.
  EXPECT_LT(std::chrono::steady_clock::now() - begin, test::kDeadline);
  EXPECT_TRUE(test::waitUntil([this] { return m_sink.tries > 2; }));
  EXPECT_THAT(m_sink.written(), IsEmpty());
  m_sink.isStuck = false;
  awaitRecords(20);
  EXPECT_THAT(m_sink.elsewhere(), IsEmpty());
}

TEST_F(AuditQueueTest, TellsOfRecordsThatItHadNoRoomFor) {
  m_sink.isStuck = true;
  failAsUsers(kMostWaiting + 7);
  EXPECT_TRUE(test::waitUntil([this] { return !m_sink.elsewhere().empty(); }));
  EXPECT_THAT(m_sink.elsewhere(),
              ElementsAre("Audit of : records are being lost: the system log does not take them "
                          "in time"));
  m_sink.isStuck = false;
  awaitRecords(21);
  EXPECT_THAT(m_sink.written(), Contains(HasSubstr("Audit of : 7 records lost")));
}

TEST_F(AuditQueueTest, SaysAtOnceThatRecordsAreBeingLostWheneverThatBegins) {
  for (const std::size_t times : {1U, 2U}) {
    m_sink.isStuck = true;
    failAsUsers(kMostWaiting + 7);
    EXPECT_TRUE(test::waitUntil([&] { return m_sink.elsewhere().size() == times; }));
    m_sink.isStuck = false;
    m_seconds += 5;
    EXPECT_TRUE(test::waitUntil([&] { return lossesTold().size() == times; }));
  }
}

// A flood that goes on while the log takes one record after the other.
TEST_F(AuditQueueTest, TellsOfLossesOnceInAWhile) {
  constexpr int kRounds = 3;
  constexpr int kFailures = kMostWaiting + 7;
  for (int i = 0; i < kRounds; ++i) {
    m_sink.isStuck = true;
    failAsUsers(kFailures);
    m_sink.isStuck = false;
    // It always finds room, and comes behind the others.
    m_queue->write(recordOf("Try", "0", "round" + std::to_string(i)));
    awaitRecord("Try of round" + std::to_string(i) + ": 0");
    EXPECT_EQ(lossesTold().size(), 1U);
  }
  m_seconds += 5;
  EXPECT_TRUE(test::waitUntil([this] { return lossesTold().size() == 2; }));
  // None is told twice, and none is not told.
  const std::vector<unsigned> losses = lossesTold();
  const auto failed = m_sink.written().size() - kRounds - losses.size();
  EXPECT_EQ(failed + losses[0] + losses[1], std::size_t{kRounds * kFailures});
}

TEST_F(AuditQueueTest, LeavesRoomToOthersThanRefusedLogins) {
  m_sink.isStuck = true;
  for (int i = 0; i < kMostWaiting; ++i) {
    m_queue->write(recordOf("Login", "refused", "anna", "192.0.2." + std::to_string(i)));
  }
  failAsUsers(kMostWaiting / 2);
  m_sink.isStuck = false;
  awaitRecord("Try of user19: 5");
  EXPECT_THAT(lossesTold(), ElementsAre(unsigned{kMostWaiting / 2}));
}

// A client with addresses of many networks.
TEST_F(AuditQueueTest, TellsTheFailuresOfOthersApartHoweverManyLoginsAreRefused) {
  constexpr int kNetworks = 2000;
  m_limits.mostWaiting = 10 * std::size_t{kNetworks};
  m_queue = std::make_unique<AuditQueue>(m_sink, findAction, m_limits);
  for (int i = 0; i < kNetworks; ++i) {
    const std::string number = std::to_string(i);
    m_queue->write(recordOf("Login", "refused", "anna", "2001:db8:0:" + number + "::1"));
  }
  for (int i = 0; i < 100; ++i) {
    m_queue->write(recordOf("Try", "5", "bert"));
  }
  end();
  EXPECT_THAT(m_sink.written(), Contains("Try of bert: 5 ... and 88 more of these in 5 s"));
  EXPECT_THAT(m_sink.written(), Contains(testing::StartsWith(" of : ... and ")));
}

TEST_F(AuditQueueTest, DropsNothingThatHasChangedSomething) {
  m_sink.isStuck = true;
  failAsUsers(kMostWaiting);
  for (int i = 0; i < kMostOfAll - kMostWaiting; ++i) {
    m_queue->write(recordOf("Try", i % 2 == 0 ? "0" : "4096"));
  }
  m_sink.isStuck = false;
  awaitRecords(kMostOfAll);
  EXPECT_THAT(m_sink.elsewhere(), IsEmpty());
}

TEST_F(AuditQueueTest, WritesElsewhereAtOnceWhatHasChangedSomethingBeyondAllRoom) {
  m_sink.isStuck = true;
  for (int i = 0; i < kMostOfAll; ++i) {
    m_queue->write(recordOf("Try", "0"));
  }
  EXPECT_THAT(m_sink.elsewhere(), IsEmpty());
  m_queue->write(recordOf("JobEnd", "Completed"));
  EXPECT_THAT(m_sink.elsewhere(), ElementsAre("JobEnd of anna: Completed"));
}

TEST_F(AuditQueueTest, KeepsCountsUntilThereIsRoomForThem) {
  m_sink.isStuck = true;
  for (unsigned i = 0; i <= AuditQueue::kMostOfAKind; ++i) {
    m_queue->write(recordOf("Try", "5"));
  }
  failAsUsers(kMostWaiting - int{AuditQueue::kMostOfAKind});
  m_seconds += 5;
  awaitTries();
  m_queue->write(recordOf("Try", "5"));
  m_seconds += 5;
  m_sink.isStuck = false;
  awaitRecord("Try of anna: 5 ... and 2 more of these in 10 s");
}

TEST_F(AuditQueueTest, GoesOnWhenItsThreadMeetsAFault) {
  m_isClockBroken = true;
  m_queue->write(recordOf("Try", "0"));
  EXPECT_TRUE(test::waitUntil([this] { return m_faults > 1; }));
  m_isClockBroken = false;
  awaitRecord("Try of anna: 0");
  end();
  EXPECT_THAT(lossesTold(), IsEmpty());
}

TEST_F(AuditQueueTest, TellsHowManyFailuresTheCountsStoodForThatItCouldNotKeep) {
  std::atomic<bool> isMemoryShort{false};
  std::atomic<unsigned> faults{0};
  m_queue = std::make_unique<AuditQueue>(
      m_sink,
      [&](const std::string& action) {
        if (isMemoryShort) {
          ++faults;
          throw std::bad_alloc();
        }
        return findAction(action);
      },
      m_limits);
  std::size_t passed = 0;
  for (const char* const user : {"anna", "bert"}) {
    for (unsigned i = 0; i < AuditQueue::kMostOfAKind + 3; ++i) {
      m_queue->write(recordOf("Try", "5", user));
    }
    passed += AuditQueue::kMostOfAKind;
    awaitRecords(passed);
  }
  isMemoryShort = true;
  m_seconds += 5;
  EXPECT_TRUE(test::waitUntil([&] { return faults > 0; }));
  end();
  EXPECT_THAT(lossesTold(), ElementsAre(6U));
}

TEST_F(AuditQueueTest, TellsInTheEndHowManyFailuresItCannotCountByTheirKinds) {
  shortenFarewell();
  for (unsigned i = 0; i < AuditQueue::kMostOfAKind + 3; ++i) {
    m_queue->write(recordOf("Try", "5"));
  }
  awaitRecords(AuditQueue::kMostOfAKind);
  m_isClockBroken = true;
  end();
  EXPECT_THAT(m_sink.elsewhere(), Contains(HasSubstr("Audit of : 3 records lost")));
}

TEST_F(AuditQueueTest, DoesNotAskASinkAgainAndAgainThatRefusesAtOnce) {
  m_limits.patience = std::chrono::hours(1);
  shortenFarewell();
  m_sink.isStuck = true;
  m_queue->write(recordOf("Try", "0"));
  EXPECT_TRUE(test::waitUntil([this] { return m_sink.tries > 0; }));
  end();
  EXPECT_EQ(m_sink.tries, 1U);
}

TEST_F(AuditQueueTest, EndsInTimeAndWritesElsewhereWhatTheSinkDoesNotTake) {
  shortenFarewell();
  m_sink.isStuck = true;
  m_queue->write(recordOf("Try", "0"));
  m_queue->write(recordOf("Try", "4096"));
  const auto start = std::chrono::steady_clock::now();
  end();
  EXPECT_LT(std::chrono::steady_clock::now() - start, test::kDeadline);
  EXPECT_THAT(m_sink.elsewhere(), ElementsAre("Try of anna: 0", "Try of anna: 4096"));
}

TEST_F(AuditQueueTest, WritesTheFirstFailuresOfAKindAndThenTheirCount) {
  for (int i = 0; i < 6000; ++i) {
    m_queue->write(recordOf("Try", "CIM_ERR_ACCESS_DENIED: number " + std::to_string(i)));
  }
  awaitRecords(AuditQueue::kMostOfAKind);
  m_seconds += 5;
  awaitRecords(AuditQueue::kMostOfAKind + 1);
  EXPECT_EQ(m_sink.written().back(),
            "Try of anna: CIM_ERR_ACCESS_DENIED ... and 5988 more of these in 5 s");
  EXPECT_THAT(m_sink.written(), SizeIs(AuditQueue::kMostOfAKind + 1));
}

TEST_F(AuditQueueTest, CountsTheFailedLoginsOfAllNamesOfAClientAsOneKind) {
  for (int i = 0; i < 20; ++i) {
    m_queue->write(
        recordOf("Login", "refused", "user" + std::to_string(i), "127.0.0." + std::to_string(i)));
  }
  end();
  EXPECT_THAT(m_sink.written(), SizeIs(AuditQueue::kMostOfAKind + 1));
  EXPECT_EQ(m_sink.written().back(), "Login of : refused ... and 8 more of these in 5 s");
}

TEST_F(AuditQueueTest, CountsMethodsThatNoClassHasAsOneKind) {
  for (int i = 0; i < 1000; ++i) {
    m_queue->write(recordOf("Invented" + std::to_string(i), "CIM_ERR_ACCESS_DENIED: no", "bert"));
  }
  m_queue->write(recordOf("Try", "5"));
  end();
  EXPECT_THAT(m_sink.written(), SizeIs(AuditQueue::kMostOfAKind + 2));
  EXPECT_THAT(m_sink.written(), Contains("Try of anna: 5"));
  EXPECT_EQ(m_sink.written().back(),
            "unknown method of bert: CIM_ERR_ACCESS_DENIED ... and 988 more of these in 5 s");
}

TEST_F(AuditQueueTest, CountsAMethodInAnyCaseAsOneKind) {
  for (int i = 0; i < 10; ++i) {
    for (const char* const name : {"Try", "try", "TRY", "tRy"}) {
      m_queue->write(recordOf(name, "5"));
    }
    awaitRecords(std::min<std::size_t>(4 * (static_cast<std::size_t>(i) + 1), 12));
  }
  end();
  EXPECT_EQ(m_sink.written().back(), "Try of anna: 5 ... and 28 more of these in 5 s");
  EXPECT_THAT(m_sink.written(), SizeIs(AuditQueue::kMostOfAKind + 1));
}

// Nor do methods of the names that the host itself gives to what it records.
TEST_F(AuditQueueTest, IsNotDeceivedByTheNameOfAMethod) {
  for (const char* const name : {"JobEnd", "Login"}) {
    for (int i = 0; i < 10; ++i) {
      m_queue->write(recordOf(name, "CIM_ERR_ACCESS_DENIED: no", "bert"));
    }
  }
  end();
  EXPECT_THAT(m_sink.written(), SizeIs(AuditQueue::kMostOfAKind + 1));
  EXPECT_EQ(m_sink.written().back(),
            "unknown method of bert: CIM_ERR_ACCESS_DENIED ... and 8 more of these in 5 s");
}

TEST_F(AuditQueueTest, TellsFewKindsOfAUserApart) {
  m_limits.mostWaiting = 1000;
  m_queue = std::make_unique<AuditQueue>(m_sink, findAction, m_limits);
  for (int i = 0; i < 100; ++i) {
    m_queue->write(recordOf("Try", "error " + std::to_string(i)));
  }
  m_queue->write(recordOf("Try", "error", "bert"));
  end();
  constexpr std::size_t kPassed = AuditQueue::kMostKinds + AuditQueue::kMostOfAKind;
  EXPECT_THAT(m_sink.written(), SizeIs(kPassed + 2));
  EXPECT_THAT(m_sink.written(), Contains("Try of bert: error"));
  EXPECT_EQ(m_sink.written().back(),
            " of anna: ... and " + std::to_string(100 - kPassed) + " more of these in 5 s");
}

TEST_F(AuditQueueTest, KeepsTheFailedLoginsOfTheUsersOfThisMachineApart) {
  for (int i = 0; i < 20; ++i) {
    wbem::AuditRecord login = recordOf("Login", "refused", "name" + std::to_string(i), "unix");
    login.details = {{"peer", "user 1000"}};
    m_queue->write(login);
  }
  wbem::AuditRecord login = recordOf("Login", "refused", "bert", "unix");
  login.details = {{"peer", "user 1001"}};
  m_queue->write(login);
  end();
  EXPECT_THAT(m_sink.written(), Contains("Login of bert: refused, peer user 1001"));
  EXPECT_EQ(m_sink.written().back(),
            "Login of : refused ... and 8 more of these in 5 s, peer user 1000");
}

TEST_F(AuditQueueTest, KeepsClientsAndUsersApart) {
  for (int i = 0; i < 10; ++i) {
    const std::string number = std::to_string(i);
    m_queue->write(recordOf("Try", "5", "user" + number));
    m_queue->write(recordOf("Try", "5", "anna", "192.0.2." + number));
    awaitRecords(2 * static_cast<std::size_t>(i) + 2);
  }
  end();
  EXPECT_THAT(m_sink.written(), AllOf(SizeIs(20), Each(testing::Not(HasSubstr("more")))));
}

TEST_F(AuditQueueTest, WritesEachRecordOfWhatSucceededAndOfTheEndOfAJob) {
  for (int i = 0; i < 15; ++i) {
    m_queue->write(recordOf("Try", "4096"));
  }
  awaitRecords(15);
  for (int i = 0; i < 15; ++i) {
    m_queue->write(recordOf("JobEnd", "Exception, error 4"));
  }
  end();
  EXPECT_THAT(m_sink.written(), SizeIs(30));
}

TEST_F(AuditQueueTest, NamesContentsByTheirSha256) {
  EXPECT_EQ(m_queue->digest({}),
            "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}

}  // namespace
