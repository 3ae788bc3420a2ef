#include "daemon/VerifiedLogins.h"

#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/rand.h>
#include <string>
#include <utility>

#include "Utils/Exception.h"

namespace quorveld {

VerifiedLogins::VerifiedLogins(Now now) : m_now(std::move(now)) {
  if (RAND_bytes(m_key.data(), static_cast<int>(m_key.size())) != 1) {
    throw utils::Exception("The system has no random bytes for the keeping of logins.");
  }
}

std::optional<wbem::Role> VerifiedLogins::find(const BasicCredentials& login) {
  const auto found = m_logins.find(digest(login));
  if (found == m_logins.end() || m_now() >= found->second.until) {
    return std::nullopt;
  }
  return found->second.role;
}

void VerifiedLogins::add(const BasicCredentials& login, wbem::Role role) {
  const Clock::time_point now = m_now();
  std::erase_if(m_logins, [now](const auto& entry) { return now >= entry.second.until; });
  // Where there is no room, the next request of this login costs another check.
  if (m_logins.size() < kMost) {
    m_logins[digest(login)] = {role, now + kLifetime};
  }
}

VerifiedLogins::Digest VerifiedLogins::digest(const BasicCredentials& login) const {
  // A user's name has no colon.
  const std::string text = login.user + ":" + login.password;
  Digest result{};
  unsigned length = 0;
  if (HMAC(EVP_sha256(), m_key.data(), static_cast<int>(m_key.size()),
           reinterpret_cast<const unsigned char*>(text.data()), text.size(), result.data(),
           &length) == nullptr ||
      length != result.size()) {
    throw utils::Exception("A login could not be digested.");
  }
  return result;
}

}  // namespace quorveld
