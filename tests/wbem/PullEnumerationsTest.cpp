#include <chrono>
#include <gmock/gmock.h>
#include <set>
#include <string>
#include <vector>

#include "wbem/PullEnumerations.h"
#include "wbem/Status.h"

namespace {

using std::chrono::seconds;
using testing::Property;
using testing::Throws;
using wbem::PullEnumerations;
using wbem::Status;
using wbem::StatusFault;

auto Refuses(Status status) {
  return Throws<StatusFault>(Property(&StatusFault::status, status));
}

class PullTest : public testing::Test {
 protected:
  static PullEnumerations::Results threeResults() { return {"onetwothree", {3, 6, 11}}; }

  std::string open(std::uint32_t count, PullEnumerations::Results results = threeResults(),
                   seconds time = seconds(30)) {
    m_out.clear();
    m_part = m_enumerations.open(m_owner, std::move(results), time, count, m_out);
    return m_out;
  }

  std::string pull(std::uint32_t count) {
    m_out.clear();
    m_part = m_enumerations.pull(m_owner, m_part.context, count, m_out);
    return m_out;
  }

  std::chrono::steady_clock::time_point m_now = std::chrono::steady_clock::now();
  PullEnumerations m_enumerations{[this] { return m_now; },
                                  {3, 2, 1060, seconds(30), seconds(300)}};
  PullEnumerations::Owner m_owner{"ann", "root/test", PullEnumerations::Kind::Instances};
  PullEnumerations::Part m_part;
  std::string m_out;
};

TEST_F(PullTest, GivesAllAtOnceWhenThatIsAskedFor) {
  EXPECT_EQ(open(3), "onetwothree");
  EXPECT_TRUE(m_part.isLast);
  EXPECT_EQ(m_part.context, "");
}

TEST_F(PullTest, IsAtItsEndWhenThereIsNothing) {
  EXPECT_EQ(open(0, {}), "");
  EXPECT_TRUE(m_part.isLast);
}

TEST_F(PullTest, GivesTheResultsPieceByPiece) {
  EXPECT_EQ(open(1), "one");
  EXPECT_FALSE(m_part.isLast);
  EXPECT_EQ(pull(0), "");
  EXPECT_FALSE(m_part.isLast);
  EXPECT_EQ(pull(1), "two");
  EXPECT_FALSE(m_part.isLast);
  EXPECT_EQ(pull(1), "three");
  EXPECT_TRUE(m_part.isLast);
}

TEST_F(PullTest, IsOverAfterTheLastResult) {
  open(0);
  const std::string context = m_part.context;
  EXPECT_EQ(pull(9), "onetwothree");
  EXPECT_EQ(m_part.context, "");
  m_part.context = context;
  EXPECT_THAT([this] { pull(1); }, Refuses(Status::InvalidEnumerationContext));
}

TEST_F(PullTest, IsOverWhenItIsClosed) {
  open(1);
  m_enumerations.close("ann", "root/test", m_part.context);
  EXPECT_THAT([this] { pull(1); }, Refuses(Status::InvalidEnumerationContext));
  EXPECT_THAT([this] { m_enumerations.close("ann", "root/test", m_part.context); },
              Refuses(Status::InvalidEnumerationContext));
}

TEST_F(PullTest, BelongsToTheUserTheNamespaceAndTheKind) {
  open(1);
  const PullEnumerations::Owner owner = m_owner;
  for (const PullEnumerations::Owner& other :
       {PullEnumerations::Owner{"bob", "root/test", PullEnumerations::Kind::Instances},
        PullEnumerations::Owner{"ann", "root/interop", PullEnumerations::Kind::Instances},
        PullEnumerations::Owner{"ann", "root/test", PullEnumerations::Kind::Paths}}) {
    m_owner = other;
    EXPECT_THAT([this] { pull(1); }, Refuses(Status::InvalidEnumerationContext));
  }
  EXPECT_THAT([this] { m_enumerations.close("bob", "root/test", m_part.context); },
              Refuses(Status::InvalidEnumerationContext));
  EXPECT_THAT([this] { m_enumerations.close("ann", "root/interop", m_part.context); },
              Refuses(Status::InvalidEnumerationContext));
  m_owner = owner;
  EXPECT_EQ(pull(1), "two");
}

TEST_F(PullTest, EndsWhenItIsNotUsedForItsTime) {
  open(1, threeResults(), seconds(10));
  m_now += seconds(9);
  EXPECT_EQ(pull(0), "");  // begins the time anew
  m_now += seconds(9);
  EXPECT_EQ(pull(1), "two");
  m_now += seconds(10);
  EXPECT_THAT([this] { pull(1); }, Refuses(Status::InvalidEnumerationContext));
}

TEST_F(PullTest, RefusesTooManyAtATime) {
  for (const char* user : {"bob", "eve", "ann"}) {
    m_owner.user = user;
    open(0);
  }
  const std::string context = m_part.context;
  EXPECT_THAT([this] { open(0); }, Refuses(Status::ServerLimitsExceeded));
  EXPECT_EQ(open(3), "onetwothree");  // none is left open
  m_enumerations.close("ann", "root/test", context);
  EXPECT_EQ(open(1), "one");
}

TEST_F(PullTest, LeavesPlacesToOtherUsers) {
  open(0);
  open(0);
  EXPECT_THAT([this] { open(0); }, Refuses(Status::ServerLimitsExceeded));
  m_owner.user = "bob";
  EXPECT_EQ(open(1), "one");
}

TEST_F(PullTest, DropsWhatNobodyUsedForItsTime) {
  open(0, threeResults(), seconds(10));
  open(0, threeResults(), seconds(20));
  m_now += seconds(10);
  EXPECT_EQ(m_enumerations.count(), 2U);
  m_enumerations.dropExpired();
  EXPECT_EQ(m_enumerations.count(), 1U);
  m_now += seconds(10);
  m_enumerations.dropExpired();
  EXPECT_EQ(m_enumerations.count(), 0U);
}

TEST_F(PullTest, CountsTheMemoryThatResultsKeep) {
  // Reserved, as a text that grows is, and given back before it is counted.
  PullEnumerations::Results roomy{std::string(400, 'x'), {200, 400}};
  roomy.text.reserve(100'000);
  open(0, std::move(roomy));
  // The ends of results without text take memory too.
  const PullEnumerations::Results many{"", std::vector<std::size_t>(1100 / sizeof(std::size_t))};
  const auto openMany = [&] { open(0, many); };
  EXPECT_THAT(openMany, Refuses(Status::ServerLimitsExceeded));
}

TEST_F(PullTest, MakesRoomWhenTimeIsOver) {
  for (int i = 0; i < 2; ++i) {
    open(0);
  }
  m_now += seconds(30);
  EXPECT_EQ(open(1), "one");
}

TEST_F(PullTest, RefusesTooManyBytes) {
  const PullEnumerations::Results half{std::string(500, 'x'), {250, 500}};
  open(0, half);
  m_owner.user = "bob";
  open(0, half);
  m_owner.user = "eve";
  EXPECT_THAT([this] { open(0); }, Refuses(Status::ServerLimitsExceeded));
  m_owner.user = "bob";
  EXPECT_EQ(pull(2).size(), 500U);
  EXPECT_EQ(open(1), "one");
}

TEST_F(PullTest, HasContextsThatDoNotRepeat) {
  std::set<std::string> contexts;
  for (int i = 0; i < 50; ++i) {
    open(0);
    EXPECT_EQ(m_part.context.size(), 32U);
    contexts.insert(m_part.context);
    m_enumerations.close("ann", "root/test", m_part.context);
  }
  EXPECT_EQ(contexts.size(), 50U);
}

TEST_F(PullTest, TakesTimesUpToItsLimit) {
  EXPECT_EQ(m_enumerations.demandTime(std::nullopt), seconds(30));
  EXPECT_EQ(m_enumerations.demandTime(1), seconds(1));
  EXPECT_EQ(m_enumerations.demandTime(300), seconds(300));
  EXPECT_THAT([this] { static_cast<void>(m_enumerations.demandTime(301)); },
              Refuses(Status::InvalidOperationTimeout));
  EXPECT_THAT([this] { static_cast<void>(m_enumerations.demandTime(0)); },
              Refuses(Status::InvalidOperationTimeout));
}

}  // namespace
