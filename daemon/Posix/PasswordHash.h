// Passwords as crypt(3) keeps them.

#ifndef ORVEX_DAEMON_POSIX_PASSWORDHASH_H_
#define ORVEX_DAEMON_POSIX_PASSWORDHASH_H_

#include <string>

namespace quorveld {

// Returns whether the text is a whole hash of a method that withstands guessing (SHA-256, SHA-512,
// bcrypt, scrypt, yescrypt) and that this system knows.
[[nodiscard]] bool isPasswordHash(const std::string& hash);

// Returns whether the hash is that of the password. How long that takes depends on the hash alone.
[[nodiscard]] bool matchesPasswordHash(const std::string& password, const std::string& hash);

}  // namespace quorveld

#endif  // ORVEX_DAEMON_POSIX_PASSWORDHASH_H_
