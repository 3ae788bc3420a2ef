// Knows the users of this machine by their connections, as the kernel tells: nobody has to log in.
//
// Operators are root, the user that the service runs as, and those of a list; every other user of
// this machine is a reader, by his number where he has no name. Where the kernel tells of none,
// nobody comes in. What is known of a user is asked anew after a few seconds.
//
// What the system knows of users may be on a directory server that does not answer. Root and the
// service's own user depend on none. Of each other user one question at a time is asked, and few in
// all; who has to wait for the answer longer than some seconds, or would be one too many who waits,
// is told to come again, or, where the list of operators is empty, reads by his number. A question
// that never ends holds up nobody else, nor the end of the program.

#ifndef ORVEX_DAEMON_POSIX_LOCALAUTHENTICATOR_H_
#define ORVEX_DAEMON_POSIX_LOCALAUTHENTICATOR_H_

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Os/FileCalls.h"
#include "daemon/Authentication.h"
#include "platform/Clock.h"
#include "platform/Mutex.h"

namespace quorveld {

class LocalAuthenticator final : public Authenticator {
 public:
  // Returns the user's name, nothing where he has none, and whether he is in the list of operators.
  // Asks the system; any thread, also when the authenticator is no more.
  struct Entry {
    std::optional<std::string> name;
    bool isListed = false;
  };
  using LookUp =
      std::function<Entry(std::uint32_t user, const std::vector<std::string>& operators)>;

  // How many wait for an answer at most: as many threads may be held up here.
  static constexpr std::size_t kMostInLine = 8;
  static constexpr std::size_t kMostOfUser = 4;  // of them
  static constexpr std::chrono::milliseconds kPatience{2000};

  // `operators` are users, and groups with an @ in front.
  explicit LocalAuthenticator(std::vector<std::string> operators);
  // The clock outlives the object.
  LocalAuthenticator(std::vector<std::string> operators, platform::Clock& clock, LookUp lookUp,
                     std::chrono::milliseconds patience);

  [[nodiscard]] bool demandsLogin() const override { return false; }
  [[nodiscard]] Admission admit(std::optional<std::uint32_t> peer) override;
  // There is no password to check.
  [[nodiscard]] std::optional<wbem::Role> check(const std::string& user,
                                                const std::string& password,
                                                const std::string& address) override;

 private:
  struct Known {
    Guest guest;
    platform::Clock::TimePoint until;
  };
  class Place;
  class Question;

  // Returns nothing where no answer came in time. To be called with a place in the line.
  [[nodiscard]] std::optional<Guest> ask(std::uint32_t user);
  [[nodiscard]] std::optional<Guest> lookUp(std::uint32_t user);
  // Returns as whom the user is served while the system does not tell; nothing where he is not.
  [[nodiscard]] std::optional<Guest> findNameless(std::uint32_t user) const;
  // Returns what is known of the user. While he is asked about, it may be a little older.
  [[nodiscard]] std::optional<Guest> findKnown(std::uint32_t user) ORVEX_REQUIRES(m_mutex);

  const std::vector<std::string> m_operators;
  platform::Clock& m_clock;
  const LookUp m_lookUp;
  const std::chrono::milliseconds m_patience;
  os::FileCalls m_calls;  // which do not come back, perhaps
  const std::uint32_t m_selfNumber;
  Guest m_self;
  platform::Mutex m_mutex;
  std::condition_variable_any m_answered;
  std::map<std::uint32_t, Known> m_known ORVEX_GUARDED_BY(m_mutex);
  std::set<std::uint32_t> m_asked ORVEX_GUARDED_BY(m_mutex);  // about whom a question is under way
  std::multiset<std::uint32_t> m_inLine ORVEX_GUARDED_BY(m_mutex);  // for whom somebody waits
};

}  // namespace quorveld

#endif  // ORVEX_DAEMON_POSIX_LOCALAUTHENTICATOR_H_
