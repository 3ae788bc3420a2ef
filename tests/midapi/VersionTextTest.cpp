#include <algorithm>
#include <gmock/gmock.h>
#include <random>
#include <string>
#include <vector>

#include "midapi/VersionText.h"

namespace {

using ma::compareVersions;

// From the oldest to the newest; those of one line are the same.
const std::vector<std::vector<std::string>> kByAge = {
    // NOLINT(cert-err58-cpp)
    {"rc1"},
    {"", "0", "0.0", "v0", "0x0", "..."},
    {"0-abc"},
    {"0.9"},
    {"1.2-alpha"},
    {"1.2-beta2"},
    {"1.2-rc1", "1.2.RC.1", "1.2rc1"},
    {"1.2-rc10"},
    {"1.2", "1.2.0", "v1.2", "V1.2", "01.002", " 1.2 ", "1_2", "1.2.0-0", "0x1.2"},
    {"1.2a", "1.2.A", "1.2-a"},
    {"1.2a1"},
    {"1.2b"},
    {"1.2.1"},
    {"1.9"},
    {"1.10.2"},
    {"3.20.1.0"},
    {"3.20.1.0-abc", "3.20.1.0-ABC"},
    {"3.20.1.0-abd"},
    {"3.20.1.1"},
    {"2026-9-30", "2026.09.30"},
    {"2026-11-21", "2026.11.21"},
    {"0x80001", "524289"},
    {"0x80002", "0x0080002", "524290"},
    {"20261121"},
    {"0xffffffffffffffff", "0x00ffffffffffffffff", "18446744073709551615"},
    {"18446744073709551616"},
    {"184467440737095516150"},
};

TEST(VersionText, KnowsTheOlderOne) {
  for (std::size_t old = 0; old < kByAge.size(); ++old) {
    for (std::size_t young = old + 1; young < kByAge.size(); ++young) {
      for (const std::string& older : kByAge[old]) {
        for (const std::string& newer : kByAge[young]) {
          EXPECT_TRUE(compareVersions(older, newer) < 0) << older << " and " << newer;
          EXPECT_TRUE(compareVersions(newer, older) > 0) << newer << " and " << older;
        }
      }
    }
  }
}

TEST(VersionText, KnowsWhatIsTheSame) {
  for (const std::vector<std::string>& same : kByAge) {
    for (const std::string& one : same) {
      for (const std::string& other : same) {
        EXPECT_TRUE(compareVersions(one, other) == 0) << one << " and " << other;
      }
    }
  }
}

TEST(VersionText, KnowsTheWordsThatAnnounce) {
  for (const std::string word :
       {"alpha", "Beta", "dev", "pre", "preview", "RC", "snapshot", "test"}) {
    EXPECT_TRUE(compareVersions("1.2-" + word, "1.2") < 0) << word;
    EXPECT_TRUE(compareVersions("1.2-" + word + "x", "1.2") > 0) << word;
  }
}

TEST(VersionText, TakesBytesThatAreNotAsciiForLetters) {
  EXPECT_TRUE(compareVersions("1\x80", "1") > 0);
  EXPECT_TRUE(compareVersions("1\xff", "1\x80") > 0);
  EXPECT_TRUE(compareVersions("1\x80", "1z") > 0);
}

TEST(VersionText, TakesNoNumberFromHexadecimalDigitsThatAreTooMany) {
  EXPECT_TRUE(compareVersions("0x10000000000000000", "0") > 0);
  EXPECT_TRUE(compareVersions("0x10000000000000000", "1") < 0);
  EXPECT_TRUE(compareVersions("0x", "0-x") == 0);
  EXPECT_TRUE(compareVersions("0xg", "0-xg") == 0);
}

// Made of what matters to the rule, so that many are the same or differ little.
class RandomVersions {
 public:
  std::string next() {
    static const std::vector<std::string> kPieces = {
        "0",  "00",  "1",       "2", "10",   "9", ".",    "-", "a",   "A",
        "rc", "pre", "preview", "x", "0x1f", "v", "\xff", "~", "Beta"};
    std::string text;
    for (std::size_t count = pick(7); count > 0; --count) {
      text += kPieces[pick(kPieces.size())];
    }
    return text;
  }

 private:
  std::size_t pick(std::size_t count) { return m_random() % count; }

  std::mt19937 m_random{1};
};

TEST(VersionText, OrdersRandomTexts) {
  constexpr int kRounds = 20000;
  RandomVersions versions;
  int same = 0;
  for (int round = 0; round < kRounds; ++round) {
    std::vector<std::string> texts = {versions.next(), versions.next(), versions.next()};
    ASSERT_TRUE(compareVersions(texts[0], texts[0]) == 0) << texts[0];
    const std::weak_ordering order = compareVersions(texts[0], texts[1]);
    ASSERT_TRUE((0 <=> order) == compareVersions(texts[1], texts[0]))
        << texts[0] << " and " << texts[1];
    same += order == 0 ? 1 : 0;
    std::sort(texts.begin(), texts.end(), [](const std::string& one, const std::string& other) {
      return compareVersions(one, other) < 0;
    });
    ASSERT_TRUE(compareVersions(texts[0], texts[1]) <= 0 &&
                compareVersions(texts[1], texts[2]) <= 0 &&
                compareVersions(texts[0], texts[2]) <= 0)
        << texts[0] << ", " << texts[1] << " and " << texts[2];
  }
  EXPECT_GT(same, kRounds / 100);
}

TEST(VersionText, ReplacesTheSameByTheSame) {
  constexpr int kRounds = 20000;
  RandomVersions versions;
  int same = 0;
  for (int round = 0; round < kRounds; ++round) {
    const std::string one = versions.next();
    const std::string other = versions.next();
    if (compareVersions(one, other) == 0) {
      ++same;
      const std::string third = versions.next();
      ASSERT_TRUE(compareVersions(one, third) == compareVersions(other, third))
          << one << ", " << other << " and " << third;
    }
  }
  EXPECT_GT(same, kRounds / 100);
}

}  // namespace
