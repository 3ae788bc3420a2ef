#include <atomic>
#include <gmock/gmock.h>
#include <string>
#include <vector>

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

  std::atomic<bool> isStuck{false};
  std::atomic<unsigned> tries{0};

 private:
  static std::string textOf(const wbem::AuditRecord& record) {
    return record.action + " of " + record.caller.user + ": " + record.result;
  }

  mutable platform::Mutex m_mutex;
  std::vector<std::string> m_written ORVEX_GUARDED_BY(m_mutex);
  std::vector<std::string> m_elsewhere ORVEX_GUARDED_BY(m_mutex);
};

wbem::AuditRecord recordOf(const std::string& action, const std::string& result,
                           const std::string& user = "anna",
                           const std::string& address = "192.0.2.7") {
  return {{user, address, wbem::Role::Operator}, action, result, "target", {}};
}

class AuditQueueTest : public testing::Test {
 protected:
  void awaitRecords(std::size_t count) const {
    EXPECT_TRUE(test::waitUntil([&] { return m_sink.written().size() >= count; }))
        << m_sink.written().size();
  }
  // A queue that ends hands over all that it has.
  void end() { m_queue.reset(); }

  std::atomic<std::int64_t> m_seconds{3600};
  FakeSink m_sink;
  AuditQueue::Limits m_limits{
      .mostWaiting = 20, .patience = milliseconds(1), .farewell = milliseconds(50), .now = [this] {
        return std::chrono::steady_clock::time_point(std::chrono::seconds(m_seconds));
      }};
  std::unique_ptr<AuditQueue> m_queue = std::make_unique<AuditQueue>(m_sink, m_limits);
};

TEST_F(AuditQueueTest, HandsRecordsOverInTheirOrder) {
  m_queue->write(recordOf("InstallFromURI", "4096"));
  m_queue->write(recordOf("ModifyInstance", "CIM_ERR_SUCCESS", "bert"));
  awaitRecords(2);
  EXPECT_THAT(m_sink.written(), ElementsAre("InstallFromURI of anna: 4096",
                                            "ModifyInstance of bert: CIM_ERR_SUCCESS"));
}

TEST_F(AuditQueueTest, HoldsNobodyUpWhileTheSinkIsStuck) {
  m_sink.isStuck = true;
  for (int i = 0; i < 20; ++i) {
    m_queue->write(recordOf("Try", "0"));
  }
  EXPECT_TRUE(test::waitUntil([this] { return m_sink.tries > 2; }));
  EXPECT_THAT(m_sink.written(), IsEmpty());
  m_sink.isStuck = false;
  awaitRecords(20);
  EXPECT_THAT(m_sink.elsewhere(), IsEmpty());
}

TEST_F(AuditQueueTest, TellsOfRecordsThatItHadNoRoomFor) {
  m_sink.isStuck = true;
  for (int i = 0; i < 27; ++i) {
    m_queue->write(recordOf("Try", "0"));
  }
  EXPECT_TRUE(test::waitUntil([this] { return !m_sink.elsewhere().empty(); }));
  EXPECT_THAT(m_sink.elsewhere(),
              ElementsAre("Audit of : records are being lost: the system log does not take them "
                          "in time"));
  m_sink.isStuck = false;
  awaitRecords(21);
  EXPECT_THAT(m_sink.written(), Contains(HasSubstr("Audit of : 7 records lost")));
}

TEST_F(AuditQueueTest, EndsInTimeAndWritesElsewhereWhatTheSinkDoesNotTake) {
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
