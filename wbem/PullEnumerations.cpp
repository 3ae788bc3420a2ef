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
  Enumeration enumeration{owner, std::move(results), time, m_clock() + time, 0};
  if (enumeration.results.ends.size() <= count) {
    take(enumeration, count, out);
    return {};
  }
  const utils::ScopedLock lock(m_mutex);
  dropExpired();
  const std::size_t bytes = enumeration.results.text.size();
  if (m_enumerations.size() >= m_limits.enumerations || m_bytes + bytes > m_limits.bytes) {
    throw StatusFault(Status::ServerLimitsExceeded,
                      "too many enumerations are open: close some, or ask for all results at once");
  }
  take(enumeration, count, out);
  std::string context = makeContext();
  m_enumerations.emplace(context, std::move(enumeration));
  m_bytes += bytes;
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
  const auto now = m_clock();
  for (auto next = m_enumerations.begin(); next != m_enumerations.end();) {
    const auto candidate = next++;
    if (candidate->second.end <= now) {
      drop(candidate);
    }
  }
}

void PullEnumerations::drop(Enumerations::iterator enumeration) {
  m_bytes -= enumeration->second.results.text.size();
  m_enumerations.erase(enumeration);
}

PullEnumerations::Enumerations::iterator PullEnumerations::demand(std::string_view context) {
  dropExpired();
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
