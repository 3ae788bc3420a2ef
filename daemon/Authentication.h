// Who may log in, and what he may do then.

#ifndef ORVEX_DAEMON_AUTHENTICATION_H_
#define ORVEX_DAEMON_AUTHENTICATION_H_

#include <cstdint>
#include <optional>
#include <string>

#include "wbem/Caller.h"

namespace quorveld {

// Any thread calls: check() one at a time for each object, the others also meanwhile. check() alone
// may take long; admit() may take some seconds, for a few threads at a time.
class Authenticator {
 public:
  Authenticator() = default;
  Authenticator(const Authenticator&) = delete;
  Authenticator& operator=(const Authenticator&) = delete;
  virtual ~Authenticator() = default;

  // Who is let in without a login.
  struct Guest {
    std::string user;  // empty where that is not known
    wbem::Role role = wbem::Role::Reader;
  };

  // Whether somebody is let in without a login.
  struct Admission {
    std::optional<Guest> guest = {};  // nothing for one who does not come in
    bool isBusy = false;              // since it cannot be told for now whether he may
  };

  // Returns false where nobody has to log in: admit() is asked in the place of check() then.
  [[nodiscard]] virtual bool demandsLogin() const { return true; }
  // Returns who comes in. `peer` is the number of the user at the other end, where it is known.
  [[nodiscard]] virtual Admission admit(std::optional<std::uint32_t> /*peer*/) { return {}; }

  // Returns null for a user that is unknown, a password that is wrong, and a user without a role.
  // It takes the same time for each, as far as that is in its hands. `address` is the client's.
  [[nodiscard]] virtual std::optional<wbem::Role> check(const std::string& user,
                                                        const std::string& password,
                                                        const std::string& address) = 0;

  // Returns a number that has changed when what check() answered before may hold no longer.
  [[nodiscard]] virtual std::uint64_t revision() { return 0; }
};

// Lets everybody in as an operator: for a host that listens on this machine alone.
class NoAuthenticator final : public Authenticator {
 public:
  [[nodiscard]] bool demandsLogin() const override { return false; }
  [[nodiscard]] Admission admit(std::optional<std::uint32_t> peer) override;
  [[nodiscard]] std::optional<wbem::Role> check(const std::string& user,
                                                const std::string& password,
                                                const std::string& address) override;
};

}  // namespace quorveld

#endif  // ORVEX_DAEMON_AUTHENTICATION_H_
