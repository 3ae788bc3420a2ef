#include "wbem/PullEnumerations.h"

#include <algorithm>
#include <random>
#include <utility>

#include "Utils/Format.h"
#include "core/ClassDeclaration.h"
#include "wbem/Status.h"

namespace wbem {
namespace {

// 128 bits that nobody can guess.
std::string makeContext() {
  std::random_device source;
  std::string context;
  for (int i = 0; i < 4; ++i) {
    context += utils::format("%08x", static_cast<unsigned>(source()));
  }
  return context;
}

// Gives back the memory that the results do not need, and returns how many bytes they take.
std::size_t compact(PullEnumerations::Results& results) {
  results.text.shrink_to_fit();
  results.ends.shrink_to_fit();
  return results.text.capacity() + results.ends.capacity() * sizeof(std::size_t);
}

[[noreturn]] void refuseContext() {
  throw StatusFault(Status::InvalidEnumerationContext,
                    "there is no such enumeration: it is closed, was not used in its time, or is "
                    "somebody else's");
}

}  // namespace

PullEnumerations::PullEnumerations(Clock clock) : PullEnumerations(std::move(clock), Limits()) {}

PullEnumerations::PullEnumerations(Clock clock, Limits limits)
    : m_clock(std::move(clock)), m_limits(limits) {}

std::chrono::seconds PullEnumerations::demandTime(std::optional<std::uint32_t> seconds) const {
  if (!seconds) {
    return m_limits.defaultTime;
  }
  const std::chrono::seconds time(*seconds);
  if (time.count() == 0 || time > m_limits.longestTime) {
    throw StatusFault(Status::InvalidOperationTimeout,
                      "OperationTimeout is from 1 to " +
                          std::to_string(m_limits.longestTime.count()) + " seconds");
  }
  return time;
}

PullEnumerations::Part PullEnumerations::open(const Owner& owner, Results results,
                                              std::chrono::seconds time, std::uint32_t count,
                                              std::string& out) {
  Enumeration enumeration{owner, std::move(results), time, m_clock() + time};
  if (enumeration.results.ends.size() <= count) {
    take(enumeration, count, out);
    return {};
  }
  enumeration.bytes = compact(enumeration.results);
  const utils::ScopedLock lock(m_mutex);
  removeExpired();
  if (!hasRoom(enumeration)) {
    throw StatusFault(Status::ServerLimitsExceeded,
                      "too many enumerations are open: close some, or ask for all results at once");
  }
  take(enumeration, count, out);
  std::string context = makeContext();
  m_bytes += enumeration.bytes;
  m_enumerations.emplace(context, std::move(enumeration));
  return {false, std::move(context)};
}

PullEnumerations::Part PullEnumerations::pull(const Owner& owner, const std::string& context,
                                              std::uint32_t count, std::string& out) {
  const utils::ScopedLock lock(m_mutex);
  const auto found = demand(context);
  Enumeration& enumeration = found->second;
  if (enumeration.owner != owner) {
    refuseContext();
  }
  take(enumeration, count, out);
  if (enumeration.next == enumeration.results.ends.size()) {
    drop(found);
    return {};
  }
  enumeration.end = m_clock() + enumeration.time;
  return {false, context};
}

void PullEnumerations::close(const std::string& user, const std::string& nameSpace,
                             const std::string& context) {
  const utils::ScopedLock lock(m_mutex);
  const auto found = demand(context);
  if (found->second.owner.user != user || found->second.owner.nameSpace != nameSpace) {
    refuseContext();
  }
  drop(found);
}

void PullEnumerations::dropExpired() {
  const utils::ScopedLock lock(m_mutex);
  removeExpired();
}

std::size_t PullEnumerations::count() {
  const utils::ScopedLock lock(m_mutex);
  return m_enumerations.size();
}

void PullEnumerations::removeExpired() {
  if (m_enumerations.empty()) {
    return;
  }
  const auto now = m_clock();
  for (auto next = m_enumerations.begin(); next != m_enumerations.end();) {
    const auto candidate = next++;
    if (candidate->second.end <= now) {
      drop(candidate);
    }
  }
}

bool PullEnumerations::hasRoom(const Enumeration& enumeration) const {
  const auto ofUser = std::count_if(m_enumerations.begin(), m_enumerations.end(),
                                    [&enumeration](const auto& entry) {
                                      return entry.second.owner.user == enumeration.owner.user;
                                    });
  return m_enumerations.size() < m_limits.enumerations &&
         static_cast<std::size_t>(ofUser) < m_limits.enumerationsOfUser &&
         m_bytes + enumeration.bytes <= m_limits.bytes;
}

void PullEnumerations::drop(Enumerations::iterator enumeration) {
  m_bytes -= enumeration->second.bytes;
  m_enumerations.erase(enumeration);
}

PullEnumerations::Enumerations::iterator PullEnumerations::demand(std::string_view context) {
  removeExpired();
  const auto found = m_enumerations.find(context);
  if (found == m_enumerations.end()) {
    refuseContext();
  }
  return found;
}

void PullEnumerations::take(Enumeration& enumeration, std::uint32_t count, std::string& out) {
  const std::vector<std::size_t>& ends = enumeration.results.ends;
  const std::size_t first = enumeration.next;
  const std::size_t last = first + std::min<std::size_t>(count, ends.size() - first);
  if (last == first) {
    return;
  }
  const std::size_t begin = first == 0 ? 0 : ends[first - 1];
  out.append(enumeration.results.text, begin, ends[last - 1] - begin);
  enumeration.next = last;
}

}  // namespace wbem
