#include "daemon/LoginGate.h"

#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "daemon/Place.h"

namespace quorveld {
namespace {

std::string describeFailure(unsigned unchecked) {
  return unchecked == 0 ? "refused" : "refused, " + std::to_string(unchecked) + " before unchecked";
}

// Whom failures are counted for.
const std::string& groupOf(const LoginGate::Origin& origin) {
  return origin.group.empty() ? origin.address : origin.group;
}

// What a record says beside the name that was given, which is anybody's invention.
std::vector<std::pair<std::string, std::string>> toDetails(const LoginGate::Origin& origin) {
  if (!origin.user) {
    return {};
  }
  return {{"peer", "user " + std::to_string(*origin.user)}};
}

}  // namespace

LoginGate::LoginGate(Authenticator& authenticator, wbem::Audit& audit, LoginThrottle::Now now)
    : m_authenticator(authenticator),
      m_audit(audit),
      m_throttle(now),
      m_verified(std::move(now)),
      m_revision(authenticator.revision()) {}

LoginGate::Decision LoginGate::admit(std::string_view authorization, const Origin& origin) {
  Decision decision;
  if (!m_authenticator.demandsLogin()) {
    const Authenticator::Admission admission = m_authenticator.admit(origin.user);
    if (admission.guest) {
      decision.verdict = Verdict::Passed;
      decision.caller = {admission.guest->user, origin.address, admission.guest->role};
    } else {
      decision.verdict = admission.isBusy ? Verdict::Busy : Verdict::Unknown;
      decision.delay = admission.isBusy ? kBusyDelay : decision.delay;
    }
    return decision;
  }
  if (!origin.isEncrypted && !origin.isLoopback) {
    decision.verdict = Verdict::InTheClear;
    return decision;
  }
  // A client asks without a login first to learn which kind is wanted: no failure.
  if (authorization.empty()) {
    return decision;
  }
  const Login login = parseBasicCredentials(authorization);
  {
    const utils::ScopedLock lock(m_lock);
    if (std::optional<Decision> known = decideUnchecked(login, origin)) {
      return *std::move(known);
    }
  }
  const Place place(m_inLine, kMostInLine);
  if (!place.isTaken()) {
    decision.verdict = Verdict::Busy;
    decision.delay = kBusyDelay;
    return decision;
  }
  std::string failure;
  std::tie(decision, failure) = check(login, origin);
  if (!failure.empty()) {
    m_audit.write({{login ? login->user : "", origin.address, std::nullopt},
                   "Login",
                   failure,
                   "",
                   toDetails(origin)});
  }
  return decision;
}

std::optional<LoginGate::Decision> LoginGate::decideUnchecked(const Login& login,
                                                              const Origin& origin) {
  Decision decision;
  if (const auto delay = m_throttle.findRefusal(groupOf(origin))) {
    decision.delay = *delay;
    return decision;
  }
  forgetIfChanged();
  const std::optional<wbem::Role> role = login ? m_verified.find(*login) : std::nullopt;
  if (!role) {
    return std::nullopt;
  }
  decision.verdict = Verdict::Passed;
  decision.caller = {login->user, origin.address, *role};
  return decision;
}

std::pair<LoginGate::Decision, std::string> LoginGate::check(const Login& login,
                                                             const Origin& origin) {
  const utils::ScopedLock checkLock(m_checkLock);
  std::uint64_t revision = 0;
  {
    // The check that this one has waited for may have settled it.
    const utils::ScopedLock lock(m_lock);
    if (std::optional<Decision> known = decideUnchecked(login, origin)) {
      return {*std::move(known), ""};
    }
    revision = m_revision;
  }
  std::optional<wbem::Role> role;
  if (login) {
    role = m_authenticator.check(login->user, login->password, origin.address);
  }
  Decision decision;
  const utils::ScopedLock lock(m_lock);
  if (!role) {
    const std::string& group = groupOf(origin);
    decision.delay = m_throttle.addFailure(group);
    return {std::move(decision), describeFailure(m_throttle.takeUnchecked(group))};
  }
  forgetIfChanged();
  if (revision == m_revision) {
    m_verified.add(*login, *role);
  }
  decision.verdict = Verdict::Passed;
  decision.caller = {login->user, origin.address, *role};
  return {std::move(decision), ""};
}

void LoginGate::forgetIfChanged() {
  const std::uint64_t revision = m_authenticator.revision();
  if (revision != m_revision) {
    m_verified.clear();
    m_revision = revision;
  }
}

}  // namespace quorveld
