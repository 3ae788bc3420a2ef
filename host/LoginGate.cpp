#include "host/LoginGate.h"

#include <utility>

namespace host {

LoginGate::LoginGate(Authenticator& authenticator, wbem::Audit& audit, LoginThrottle::Now now)
    : m_authenticator(authenticator),
      m_audit(audit),
      m_throttle(now),
      m_verified(std::move(now)),
      m_revision(authenticator.revision()) {}

LoginGate::Decision LoginGate::admit(std::string_view authorization, const Origin& origin) {
  Decision decision;
  if (!m_authenticator.demandsLogin()) {
    const std::optional<wbem::Role> role = m_authenticator.check("", "");
    decision.verdict = role ? Verdict::Passed : Verdict::Unauthorized;
    decision.caller = {"", origin.address, role.value_or(wbem::Role::Reader)};
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
  const std::optional<BasicCredentials> login = parseBasicCredentials(authorization);
  const utils::ScopedLock lock(m_lock);
  if (const auto delay = m_throttle.findRefusal(origin.address)) {
    decision.delay = *delay;
    return decision;
  }
  const std::optional<wbem::Role> role = login ? check(*login) : std::nullopt;
  if (!role) {
    return refuse(login ? login->user : "", origin.address);
  }
  decision.verdict = Verdict::Passed;
  decision.caller = {login->user, origin.address, *role};
  return decision;
}

std::optional<wbem::Role> LoginGate::check(const BasicCredentials& login) {
  const std::uint64_t revision = m_authenticator.revision();
  if (revision != m_revision) {
    m_verified.clear();
    m_revision = revision;
  }
  if (const auto known = m_verified.find(login)) {
    return known;
  }
  const std::optional<wbem::Role> role = m_authenticator.check(login.user, login.password);
  if (role) {
    m_verified.add(login, *role);
  }
  return role;
}

LoginGate::Decision LoginGate::refuse(const std::string& user, const std::string& address) {
  Decision decision;
  decision.delay = m_throttle.addFailure(address);
  m_audit.write({{user, address, wbem::Role::Reader}, "Login", "refused", ""});
  return decision;
}

}  // namespace host
