// The users of this machine and their groups, as the system knows them. Any thread; each question
// is asked of the system anew.

#ifndef ORVEX_DAEMON_POSIX_SYSTEMUSERS_H_
#define ORVEX_DAEMON_POSIX_SYSTEMUSERS_H_

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace quorveld {

// Returns whether the user is in the list: by his name, or as a member of a group of it ("@GROUP").
[[nodiscard]] bool isListed(const std::vector<std::string>& list, const std::string& user);

// Returns nothing for a number that is no user's.
[[nodiscard]] std::optional<std::string> findUserName(uid_t number);

}  // namespace quorveld

#endif  // ORVEX_DAEMON_POSIX_SYSTEMUSERS_H_
