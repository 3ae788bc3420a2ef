#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "daemon/AnswerPlaces.h"

namespace {

using quorveld::AnswerPlaces;

class AnswerPlacesTest : public testing::Test {
 protected:
  // Takes places until there is none for the peer; returns how many he got.
  unsigned takeAll(const std::string& peer, bool isTrusted = false) {
    unsigned count = 0;
    while (true) {
      auto place = std::make_unique<AnswerPlaces::Place>(m_places, peer, isTrusted);
      if (!place->isTaken()) {
        return count;
      }
      m_taken.push_back(std::move(place));
      ++count;
    }
  }

  AnswerPlaces m_places;
  std::vector<std::unique_ptr<AnswerPlaces::Place>> m_taken;
};

TEST_F(AnswerPlacesTest, GivesOnePeerHalfOfThem) {
  EXPECT_EQ(takeAll("user 1234"), AnswerPlaces::kMost / 2);
}

TEST_F(AnswerPlacesTest, KeepsSomeForWhoComesNext) {
  EXPECT_EQ(takeAll("192.0.2.1"), 16U);
  EXPECT_EQ(takeAll("192.0.2.2"), 8U);
  EXPECT_EQ(takeAll("192.0.2.3"), 4U);
  EXPECT_EQ(takeAll("192.0.2.4"), 2U);
  EXPECT_EQ(takeAll("192.0.2.1"), 0U);
}

TEST_F(AnswerPlacesTest, KeepsSomeForTheTrustedWhateverIsTaken) {
  unsigned taken = 0;
  for (unsigned peer = 0; taken < AnswerPlaces::kMost; ++peer) {
    ASSERT_LT(peer, AnswerPlaces::kMost);
    taken += takeAll(std::to_string(peer));
  }
  EXPECT_EQ(takeAll("another"), 0U);
  EXPECT_EQ(takeAll("user 0", true), AnswerPlaces::kKept);
}

TEST_F(AnswerPlacesTest, GivesTheTrustedAnyPlace) {
  EXPECT_EQ(takeAll("user 0", true), AnswerPlaces::kMost + AnswerPlaces::kKept);
}

TEST_F(AnswerPlacesTest, GivesAgainWhatHasComeBack) {
  EXPECT_EQ(takeAll("user 1234"), 16U);
  m_taken.pop_back();
  EXPECT_EQ(takeAll("user 1234"), 1U);
  m_taken.clear();
  EXPECT_EQ(takeAll("user 1235"), 16U);
}

}  // namespace
