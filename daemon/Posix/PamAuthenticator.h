// Logs users in by PAM, under the service name "quorveld"; the roles are those of two lists.

#ifndef ORVEX_DAEMON_POSIX_PAMAUTHENTICATOR_H_
#define ORVEX_DAEMON_POSIX_PAMAUTHENTICATOR_H_

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Utils/Mutex.h"
#include "daemon/Authentication.h"

namespace quorveld {

class PamAuthenticator final : public Authenticator {
 public:
  static constexpr const char* kService = "quorveld";

  // Users, and groups with an @ in front. Who is in both lists is an operator.
  struct Roles {
    std::vector<std::string> operators;
    std::vector<std::string> readers;
  };
  // Returns whether the user's account passes with the password.
  using Verify = std::function<bool(const std::string& user, const std::string& password,
                                    const std::string& address)>;

  explicit PamAuthenticator(Roles roles);
  // For a test: another judge of passwords than PAM.
  PamAuthenticator(Roles roles, Verify verify);

  // A user without a role is asked of PAM as well, so that the time does not tell who has one.
  [[nodiscard]] std::optional<wbem::Role> check(const std::string& user,
                                                const std::string& password,
                                                const std::string& address) override;

 private:
  const Roles m_roles;
  utils::Mutex m_lock;  // modules of PAM need not bear several threads
  const Verify m_verify ORVEX_GUARDED_BY(m_lock);
};

// Asks PAM: the password is given once, every other question is left unanswered, and no time is let
// pass after a failure, which is the caller's to do. PAM's modules get the client's address as the
// remote host, for rules and records of theirs. `directory` holds the service's file; null: the
// system's.
[[nodiscard]] bool verifyByPam(const char* service, const std::string& user,
                               const std::string& password, const std::string& address,
                               const char* directory = nullptr);

}  // namespace quorveld

#endif  // ORVEX_DAEMON_POSIX_PAMAUTHENTICATOR_H_
