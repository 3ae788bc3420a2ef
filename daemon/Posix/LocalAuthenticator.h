// Knows the users of this machine by their connections, as the kernel tells: nobody has to log in.
//
// Operators are root, the user that the service runs as, and those of a list; every other user of
// this machine is a reader, by his number where he has no name. Where the kernel tells of none,
// nobody comes in. What is known of a user is asked anew after a few seconds.

#ifndef ORVEX_DAEMON_POSIX_LOCALAUTHENTICATOR_H_
#define ORVEX_DAEMON_POSIX_LOCALAUTHENTICATOR_H_

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "daemon/Authentication.h"
#include "platform/Clock.h"
#include "platform/Mutex.h"

namespace quorveld {

class LocalAuthenticator final : public Authenticator {
 public:
  // `operators` are users, and groups with an @ in front. The clock outlives the object.
  explicit LocalAuthenticator(std::vector<std::string> operators,
                              platform::Clock& clock = platform::steadyClock());

  [[nodiscard]] bool demandsLogin() const override { return false; }
  [[nodiscard]] std::optional<Guest> admit(std::optional<std::uint32_t> peer) override;
  // There is no password to check.
  [[nodiscard]] std::optional<wbem::Role> check(const std::string& user,
                                                const std::string& password,
                                                const std::string& address) override;

 private:
  struct Known {
    Guest guest;
    platform::Clock::TimePoint until;
  };

  [[nodiscard]] Guest lookUp(std::uint32_t user) const;

  const std::vector<std::string> m_operators;
  platform::Clock& m_clock;
  platform::Mutex m_mutex;
  std::map<std::uint32_t, Known> m_known ORVEX_GUARDED_BY(m_mutex);
};

}  // namespace quorveld

#endif  // ORVEX_DAEMON_POSIX_LOCALAUTHENTICATOR_H_
