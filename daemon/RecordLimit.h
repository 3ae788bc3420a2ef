// Keeps a log readable under a flood: of each kind of record, the first few of some seconds pass,
// and the rest is counted. What was left out is asked for when those seconds are over, so that the
// count gets a record of its own.
//
// Bounded in memory: where too many kinds come at once, the further ones count as one, which has no
// example. One thread at a time.

#ifndef ORVEX_DAEMON_RECORDLIMIT_H_
#define ORVEX_DAEMON_RECORDLIMIT_H_

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace quorveld {

template <class Record>
class RecordLimit {
 public:
  using Clock = std::chrono::steady_clock;
  using Now = std::function<Clock::time_point()>;

  static constexpr std::chrono::seconds kPeriod{5};
  static constexpr std::size_t kMostKinds = 1024;

  // What was left out of a kind.
  struct Rest {
    Record example;  // the first of the kind that was left out
    std::uint64_t count = 0;
  };

  explicit RecordLimit(unsigned most, Now now = Clock::now) : m_most(most), m_now(std::move(now)) {}

  // Returns whether the record is to be written; else it is counted.
  [[nodiscard]] bool admits(const std::string& kind, const Record& record) {
    const bool isKnown = m_kinds.contains(kind);
    const bool isAlone = isKnown || m_kinds.size() < kMostKinds;
    const auto [entry, isNew] = m_kinds.try_emplace(isAlone ? kind : std::string());
    Kind& counted = entry->second;
    if (isNew) {
      counted.end = m_now() + kPeriod;
    }
    if (counted.passed < m_most) {
      ++counted.passed;
      return true;
    }
    if (counted.rest.count++ == 0 && isAlone) {
      counted.rest.example = record;
    }
    return false;
  }

  // Returns what was left out in periods that are over, and forgets these.
  [[nodiscard]] std::vector<Rest> takeEnded() {
    const Clock::time_point now = m_now();
    return take([now](const Kind& kind) { return now >= kind.end; });
  }
  // The same for all of them, whose periods end with this.
  [[nodiscard]] std::vector<Rest> takeAll() {
    return take([](const Kind& /*kind*/) { return true; });
  }

 private:
  struct Kind {
    Clock::time_point end;
    unsigned passed = 0;
    Rest rest;
  };

  template <class IsMeant>
  std::vector<Rest> take(IsMeant isMeant) {
    std::vector<Rest> rests;
    std::erase_if(m_kinds, [&](auto& entry) {
      if (!isMeant(entry.second)) {
        return false;
      }
      if (entry.second.rest.count > 0) {
        rests.push_back(std::move(entry.second.rest));
      }
      return true;
    });
    return rests;
  }

  const unsigned m_most;
  const Now m_now;
  std::unordered_map<std::string, Kind> m_kinds;
};

// Returns what a record of a rest says: "... and 5988 more of these in 5 s".
[[nodiscard]] std::string describeRest(std::uint64_t count, std::chrono::seconds period);

}  // namespace quorveld

#endif  // ORVEX_DAEMON_RECORDLIMIT_H_
