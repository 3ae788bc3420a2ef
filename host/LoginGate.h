// Decides whether a request gets in, and as whom: what the handler of requests asks first.
//
// Any thread may call. Logins that are not remembered are checked one at a time.

#ifndef ORVEX_HOST_LOGINGATE_H_
#define ORVEX_HOST_LOGINGATE_H_

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "Utils/Mutex.h"
#include "host/Authentication.h"
#include "host/LoginThrottle.h"
#include "host/VerifiedLogins.h"
#include "wbem/Audit.h"
#include "wbem/Caller.h"

namespace host {

class LoginGate {
 public:
  // Where a request comes from.
  struct Origin {
    std::string address;
    bool isLoopback = false;
    bool isEncrypted = false;
  };

  enum class Verdict {
    Passed,
    Unauthorized,  // a login is missing, or was refused
    InTheClear,    // no password is taken from there
  };

  struct Decision {
    Verdict verdict = Verdict::Unauthorized;
    wbem::Caller caller;                 // when it has passed
    std::chrono::milliseconds delay{0};  // before the refusal is sent
  };

  // The authenticator and the audit, which gets a record of each login that fails, are the caller's
  // and outlive the gate.
  LoginGate(Authenticator& authenticator, wbem::Audit& audit,
            LoginThrottle::Now now = LoginThrottle::Clock::now);

  // `authorization` is the field of the request, empty for none.
  [[nodiscard]] Decision admit(std::string_view authorization, const Origin& origin);

  [[nodiscard]] bool demandsLogin() const { return m_authenticator.demandsLogin(); }

 private:
  [[nodiscard]] std::optional<wbem::Role> check(const BasicCredentials& login)
      ORVEX_REQUIRES(m_lock);
  [[nodiscard]] Decision refuse(const std::string& user, const std::string& address)
      ORVEX_REQUIRES(m_lock);

  Authenticator& m_authenticator;
  wbem::Audit& m_audit;
  utils::Mutex m_lock;
  LoginThrottle m_throttle ORVEX_GUARDED_BY(m_lock);
  VerifiedLogins m_verified ORVEX_GUARDED_BY(m_lock);
  std::uint64_t m_revision ORVEX_GUARDED_BY(m_lock) = 0;
};

}  // namespace host

#endif  // ORVEX_HOST_LOGINGATE_H_
