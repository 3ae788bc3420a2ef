// Logins that have passed a short while ago, so that the requests of one client do not cost a check
// of its password each. Passwords are kept as digests under a key of the process's own alone. One
// thread at a time.

#ifndef ORVEX_DAEMON_VERIFIEDLOGINS_H_
#define ORVEX_DAEMON_VERIFIEDLOGINS_H_

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>

#include "daemon/BasicCredentials.h"
#include "wbem/Caller.h"

namespace quorveld {

class VerifiedLogins {
 public:
  using Clock = std::chrono::steady_clock;
  using Now = std::function<Clock::time_point()>;

  static constexpr std::chrono::seconds kLifetime{
      60};  // from the check on, however often it is used
  static constexpr std::size_t kMost = 256;

  // Throws utils::Exception when there are no random bytes to be had.
  explicit VerifiedLogins(Now now = Clock::now);

  [[nodiscard]] std::optional<wbem::Role> find(const BasicCredentials& login);
  void add(const BasicCredentials& login, wbem::Role role);
  void clear() { m_logins.clear(); }

 private:
  static constexpr std::size_t kDigestBytes = 32;
  using Digest = std::array<std::uint8_t, kDigestBytes>;
  struct Login {
    wbem::Role role = wbem::Role::Reader;
    Clock::time_point until;
  };

  [[nodiscard]] Digest digest(const BasicCredentials& login) const;

  Now m_now;
  Digest m_key{};
  std::map<Digest, Login> m_logins;
};

}  // namespace quorveld

#endif  // ORVEX_DAEMON_VERIFIEDLOGINS_H_
