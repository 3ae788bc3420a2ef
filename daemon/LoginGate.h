// Decides whether a request gets in, and as whom: what the handler of requests asks first.
//
// Any thread may call. Logins that are not remembered are checked one at a time, and a check may
// take as long as a directory server that is gone lets PAM wait. So only few requests may be in
// line for it, and those that need none are decided meanwhile.

#ifndef ORVEX_DAEMON_LOGINGATE_H_
#define ORVEX_DAEMON_LOGINGATE_H_

#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "Utils/Mutex.h"
#include "daemon/Authentication.h"
#include "daemon/LoginThrottle.h"
#include "daemon/VerifiedLogins.h"
#include "wbem/Audit.h"
#include "wbem/Caller.h"

namespace quorveld {

class LoginGate {
 public:
  // Where a request comes from.
  struct Origin {
    std::string address;
    bool isLoopback = false;
    bool isEncrypted = false;
    std::optional<std::uint32_t> user = {};  // at the other end, where it is known
    std::string group = {};                  // that failures are counted for; empty: the address
  };

  enum class Verdict {
    Passed,
    Unauthorized,  // a login is missing, or was refused
    InTheClear,    // no password is taken from there
    Unknown,       // nobody has to log in, but who it is cannot be told
    Busy,          // too many logins are in line for their check, or it takes too long
  };

  struct Decision {
    Verdict verdict = Verdict::Unauthorized;
    wbem::Caller caller;                 // when it has passed
    std::chrono::milliseconds delay{0};  // before the refusal is sent
  };

  // How many requests are in line for a check at most, the one that is checked among them: as many
  // threads may be held up here.
  static constexpr unsigned kMostInLine = 4;
  static constexpr std::chrono::milliseconds kBusyDelay{500};

  // The authenticator and the audit, which gets a record of each login that fails, are the caller's
  // and outlive the gate.
  LoginGate(Authenticator& authenticator, wbem::Audit& audit,
            LoginThrottle::Now now = LoginThrottle::Clock::now);

  // `authorization` is the field of the request, empty for none.
  [[nodiscard]] Decision admit(std::string_view authorization, const Origin& origin);

  [[nodiscard]] bool demandsLogin() const { return m_authenticator.demandsLogin(); }

 private:
  using Login = std::optional<BasicCredentials>;  // null: damaged

  // Returns null where the authenticator has to be asked.
  [[nodiscard]] std::optional<Decision> decideUnchecked(const Login& login, const Origin& origin)
      ORVEX_REQUIRES(m_lock);
  // Asks the authenticator when the turn has come. Returns with the decision what the audit is to
  // say, empty for nothing.
  [[nodiscard]] std::pair<Decision, std::string> check(const Login& login, const Origin& origin);
  void forgetIfChanged() ORVEX_REQUIRES(m_lock);

  Authenticator& m_authenticator;
  wbem::Audit& m_audit;
  utils::Mutex m_checkLock;  // taken before the other one; held over a check
  utils::Mutex m_lock;       // held for no wait
  LoginThrottle m_throttle ORVEX_GUARDED_BY(m_lock);
  VerifiedLogins m_verified ORVEX_GUARDED_BY(m_lock);
  std::uint64_t m_revision ORVEX_GUARDED_BY(m_lock) = 0;
  std::atomic<unsigned> m_inLine{0};
};

}  // namespace quorveld

#endif  // ORVEX_DAEMON_LOGINGATE_H_
