// Users, their passwords and roles in a file of the administrator's: lines `USER:HASH:ROLE`, the
// hash as crypt(3) has it, the role reader or operator; empty lines and such that begin with # are
// left out.
//
// The file is read again when it has changed. While it cannot be used (it is gone, damaged, another
// user's, or not private) nobody gets in: what was read before may be what the administrator has
// just taken back. Each such fault is logged once, with what to do; a file that is right again is
// taken.

#ifndef ORVEX_DAEMON_PASSWORDFILE_H_
#define ORVEX_DAEMON_PASSWORDFILE_H_

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "Utils/Mutex.h"
#include "daemon/Authentication.h"
#include "platform/Posix/PrivateFile.h"

namespace quorveld {

struct PasswordFileUser {
  std::string hash;
  wbem::Role role = wbem::Role::Reader;

  friend bool operator==(const PasswordFileUser&, const PasswordFileUser&) = default;
};
using PasswordFileUsers = std::map<std::string, PasswordFileUser>;

// Reads the content of such a file; faults name it by its path. Throws ConfigurationFault for a
// damaged line.
[[nodiscard]] PasswordFileUsers parsePasswordFile(const std::string& path,
                                                  const std::string& content);

class PasswordFileAuthenticator final : public Authenticator {
 public:
  // The time of day in nanoseconds since 1970, by the clock that stamps files.
  using Now = std::function<std::int64_t()>;

  // Throws ConfigurationFault for a file that cannot be read or is not private (see
  // platform/Posix/PrivateFile.h), and for a damaged line, which it names.
  explicit PasswordFileAuthenticator(std::string path);
  PasswordFileAuthenticator(std::string path, Now now);

  [[nodiscard]] std::optional<wbem::Role> check(const std::string& user,
                                                const std::string& password,
                                                const std::string& address) override;
  [[nodiscard]] std::uint64_t revision() override;

 private:
  // What was read at one time. A file that had changed a moment before may change again without
  // another stamp, since those have the grain of the kernel's clock: it has not settled.
  struct Reading {
    PasswordFileUsers users;
    platform::FileStamp stamp;
    bool hasSettled = false;
  };

  [[nodiscard]] static Reading read(const std::string& path, const Now& now);
  void readIfChanged() ORVEX_REQUIRES(m_lock);

  const std::string m_path;
  const Now m_now;
  utils::Mutex m_lock;
  // Null while the file cannot be used: then each question tries it again.
  std::optional<Reading> m_reading ORVEX_GUARDED_BY(m_lock);
  std::string m_fault ORVEX_GUARDED_BY(m_lock);  // why, as it was logged
  std::uint64_t m_revision ORVEX_GUARDED_BY(m_lock) = 0;
};

}  // namespace quorveld

#endif  // ORVEX_DAEMON_PASSWORDFILE_H_
