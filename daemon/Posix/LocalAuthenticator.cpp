#include "daemon/Posix/LocalAuthenticator.h"

#include <chrono>
#include <cstddef>
#include <unistd.h>
#include <utility>

#include "daemon/Posix/SystemUsers.h"

namespace quorveld {
namespace {

constexpr std::uint32_t kRoot = 0;
constexpr std::chrono::seconds kMemory{5};
constexpr std::size_t kMostKnown = 1024;

}  // namespace

LocalAuthenticator::LocalAuthenticator(std::vector<std::string> operators, platform::Clock& clock)
    : m_operators(std::move(operators)), m_clock(clock) {}

std::optional<Authenticator::Guest> LocalAuthenticator::admit(std::optional<std::uint32_t> peer) {
  if (!peer) {
    return std::nullopt;
  }
  const platform::Clock::TimePoint now = m_clock.now();
  {
    const platform::Lock lock(m_mutex);
    const auto found = m_known.find(*peer);
    if (found != m_known.end() && now < found->second.until) {
      return found->second.guest;
    }
  }
  // A directory server may make its askers wait: not under the lock.
  Guest guest = lookUp(*peer);
  const platform::Lock lock(m_mutex);
  if (m_known.size() >= kMostKnown) {
    m_known.clear();
  }
  m_known.insert_or_assign(*peer, Known{guest, now + kMemory});
  return guest;
}

std::optional<wbem::Role> LocalAuthenticator::check(const std::string& /*user*/,
                                                    const std::string& /*password*/,
                                                    const std::string& /*address*/) {
  return std::nullopt;
}

Authenticator::Guest LocalAuthenticator::lookUp(std::uint32_t user) const {
  // Nobody's directory server decides whether root is served.
  if (user == kRoot) {
    return {"root", wbem::Role::Operator};
  }
  const std::optional<std::string> name = findUserName(user);
  const bool isOperator = user == ::geteuid() || (name && isListed(m_operators, *name));
  return {name.value_or(std::to_string(user)),
          isOperator ? wbem::Role::Operator : wbem::Role::Reader};
}

}  // namespace quorveld
