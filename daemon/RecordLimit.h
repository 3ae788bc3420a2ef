// Keeps a log readable under a flood: of each kind of record, the first few of some seconds pass,
// and the rest is counted. What was left out is asked for when those seconds are over, so that the
// count gets a record of its own.
//
// Kinds belong to an owner, who causes the records. Bounded in memory: where an owner has too many
// kinds at once, his further ones count as one, and where all have, those of all do. One thread at
// a time.

#ifndef ORVEX_DAEMON_RECORDLIMIT_H_
#define ORVEX_DAEMON_RECORDLIMIT_H_

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <limits>
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

  // What was left out of a kind, or of several that count as one.
  struct Rest {
    Record example;  // the first that was left out; of the kinds of all, there is none
    bool isMixed = false;
    std::uint64_t count = 0;
    std::chrono::seconds time = kPeriod;  // in which they came: whole periods
  };

  // `most` records of a kind pass; an owner has `mostKinds` of them.
  explicit RecordLimit(unsigned most, Now now = Clock::now, std::size_t mostKinds = kMostKinds)
      : m_most(most), m_mostKinds(mostKinds), m_now(std::move(now)) {}

  // Returns whether the record is to be written; else it is counted.
  [[nodiscard]] bool admits(const std::string& owner, const std::string& kind,
                            const Record& record) {
    Kind& counted = demandKind(owner, kind);
    if (counted.passed < m_most) {
      ++counted.passed;
      return true;
    }
    if (counted.rest.count++ == 0 && &counted != &m_others) {
      counted.rest.example = record;
    }
    return false;
  }
  [[nodiscard]] bool admits(const std::string& kind, const Record& record) {
    return admits("", kind, record);
  }

  // Returns what was left out in periods that are over, of no more than `most` kinds, and forgets
  // these. What there was no room for goes on being counted, and all of it where this throws.
  [[nodiscard]] std::vector<Rest> takeEnded(
      std::size_t most = std::numeric_limits<std::size_t>::max()) {
    const Clock::time_point now = m_now();
    return take(now, most, [now](const Kind& kind) { return now >= kind.begin + kPeriod; });
  }
  // The same for all of them, whose periods end with this.
  [[nodiscard]] std::vector<Rest> takeAll() {
    return take(m_now(), std::numeric_limits<std::size_t>::max(),
                [](const Kind& /*kind*/) { return true; });
  }

  // Returns how many were left out and not taken yet.
  [[nodiscard]] std::uint64_t countLeftOut() const noexcept {
    std::uint64_t count = m_others.rest.count;
    for (const auto& [owner, kinds] : m_owners) {
      for (const auto& [name, kind] : kinds) {
        count += kind.rest.count;
      }
    }
    return count;
  }

 private:
  struct Kind {
    Clock::time_point begin;
    unsigned passed = 0;
    Rest rest;
  };
  using Kinds = std::unordered_map<std::string, Kind>;

  // Under which the kinds of an owner stand that count as one.
  static constexpr const char* kOthers = "";

  Kind& demandKind(const std::string& owner, const std::string& kind) {
    const auto own = m_owners.find(owner);
    const std::size_t count = own == m_owners.end() ? 0 : own->second.size();
    if (count > 0) {
      const auto known = own->second.find(kind);
      if (known != own->second.end()) {
        return known->second;
      }
    }
    if (m_count >= kMostKinds) {
      if (m_others.passed == 0) {
        m_others.begin = m_now();
        m_others.rest.isMixed = true;
      }
      return m_others;
    }
    const Clock::time_point now = m_now();
    const bool isMixed = count >= m_mostKinds;
    const auto [entry, isNew] = m_owners[owner].try_emplace(isMixed ? kOthers : kind);
    if (isNew) {
      entry->second.begin = now;
      entry->second.rest.isMixed = isMixed;
      ++m_count;
    }
    return entry->second;
  }

  template <class IsMeant>
  std::vector<Rest> take(Clock::time_point now, std::size_t most, IsMeant isMeant) {
    std::vector<Rest> rests;
    rests.reserve(std::min(most, m_count + 1));
    const auto takeOne = [&](Kind& kind) {
      if (!isMeant(kind) || (kind.rest.count > 0 && rests.size() >= most)) {
        return false;
      }
      if (kind.rest.count > 0) {
        const auto periods = std::max<Clock::rep>((now - kind.begin) / kPeriod, 1);
        kind.rest.time = kPeriod * periods;
        rests.push_back(std::move(kind.rest));
      }
      return true;
    };
    for (auto owner = m_owners.begin(); owner != m_owners.end();) {
      for (auto kind = owner->second.begin(); kind != owner->second.end();) {
        const bool isTaken = takeOne(kind->second);
        kind = isTaken ? owner->second.erase(kind) : std::next(kind);
        m_count -= isTaken ? 1 : 0;
      }
      owner = owner->second.empty() ? m_owners.erase(owner) : std::next(owner);
    }
    if (m_others.passed > 0 && takeOne(m_others)) {
      m_others = {};
    }
    return rests;
  }

  const unsigned m_most;
  const std::size_t m_mostKinds;
  const Now m_now;
  std::unordered_map<std::string, Kinds> m_owners;
  std::size_t m_count = 0;  // of the kinds of all owners
  Kind m_others;            // of all owners, where there are too many kinds
};

// Returns what a record of a rest says: "... and 5988 more of these in 5 s".
[[nodiscard]] std::string describeRest(std::uint64_t count, std::chrono::seconds time);

}  // namespace quorveld

#endif  // ORVEX_DAEMON_RECORDLIMIT_H_
