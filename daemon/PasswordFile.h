// Users, their passwords and roles in a file of the administrator's: lines `USER:HASH:ROLE`, the
// hash as crypt(3) has it, the role reader or operator; empty lines and such that begin with # are
// left out.
//
// The file is read again when it has changed. What cannot be used then is logged, and what was read
// before stays in force.

#ifndef ORVEX_DAEMON_PASSWORDFILE_H_
#define ORVEX_DAEMON_PASSWORDFILE_H_

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "Utils/Mutex.h"
#include "daemon/Authentication.h"

namespace quorveld {

class PasswordFileAuthenticator final : public Authenticator {
 public:
  // Throws ConfigurationFault for a file that cannot be read, that others than its owner may read
  // or write, and for a damaged line, which it names.
  explicit PasswordFileAuthenticator(std::string path);

  [[nodiscard]] std::optional<wbem::Role> check(const std::string& user,
                                                const std::string& password,
                                                const std::string& address) override;
  [[nodiscard]] std::uint64_t revision() override;

 private:
  struct User {
    std::string hash;
    wbem::Role role;
  };
  using Users = std::map<std::string, User>;

  // What tells one content of the file from another.
  struct Stamp {
    std::filesystem::file_time_type time;
    std::uintmax_t size = 0;
    std::filesystem::perms permissions = std::filesystem::perms::unknown;

    friend bool operator==(const Stamp&, const Stamp&) = default;
  };

  [[nodiscard]] static std::optional<Stamp> stampOf(const std::string& path);
  [[nodiscard]] static Users read(const std::string& path);
  // Adds the user of a line; `place` is where that stands, for faults.
  static void addUser(Users& users, const std::string& line, const std::string& place);

  void readIfChanged() ORVEX_REQUIRES(m_lock);

  const std::string m_path;
  utils::Mutex m_lock;
  // Of the content that was tried last; null: the file was not there.
  std::optional<Stamp> m_stamp ORVEX_GUARDED_BY(m_lock);
  Users m_users ORVEX_GUARDED_BY(m_lock);
  std::uint64_t m_revision ORVEX_GUARDED_BY(m_lock) = 0;
};

}  // namespace quorveld

#endif  // ORVEX_DAEMON_PASSWORDFILE_H_
