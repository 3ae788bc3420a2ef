#include "daemon/Posix/LocalAuthenticator.h"

#include <memory>
#include <unistd.h>
#include <utility>

#include "Utils/Log.h"
#include "daemon/Posix/SystemUsers.h"

namespace quorveld {
namespace {

constexpr utils::LogSource kLog{"LocalAuthenticator"};

constexpr std::uint32_t kRoot = 0;
constexpr std::chrono::seconds kMemory{5};
// How much longer that holds while the user is asked about.
constexpr std::chrono::seconds kGrace{5};
constexpr std::size_t kMostKnown = 1024;

LocalAuthenticator::Entry askSystem(std::uint32_t user, const std::vector<std::string>& operators) {
  LocalAuthenticator::Entry entry;
  entry.name = findUserName(user);
  entry.isListed = entry.name && isListed(operators, *entry.name);
  return entry;
}

}  // namespace

// A place in the line, held as long as the object.
class LocalAuthenticator::Place {
 public:
  Place(LocalAuthenticator& line, std::uint32_t user)
      : m_line(line), m_user(user), m_isTaken(take(line, user)) {}
  Place(const Place&) = delete;
  Place& operator=(const Place&) = delete;
  ~Place() {
    if (m_isTaken) {
      leave(m_line, m_user);
    }
  }

  [[nodiscard]] bool isTaken() const { return m_isTaken; }

 private:
  static bool take(LocalAuthenticator& line, std::uint32_t user) {
    const platform::Lock lock(line.m_mutex);
    if (line.m_inLine.size() >= kMostInLine || line.m_inLine.count(user) >= kMostOfUser) {
      return false;
    }
    line.m_inLine.insert(user);
    return true;
  }
  // Not in the destructor, in which the compiler does not look for locks.
  static void leave(LocalAuthenticator& line, std::uint32_t user) {
    const platform::Lock lock(line.m_mutex);
    line.m_inLine.erase(line.m_inLine.find(user));
  }

  LocalAuthenticator& m_line;
  const std::uint32_t m_user;
  const bool m_isTaken;
};

// That a user is asked about, as long as the object.
class LocalAuthenticator::Question {
 public:
  // The caller has noted it.
  Question(LocalAuthenticator& asker, std::uint32_t user) : m_asker(asker), m_user(user) {}
  Question(const Question&) = delete;
  Question& operator=(const Question&) = delete;
  ~Question() { end(m_asker, m_user); }

 private:
  // Not in the destructor, in which the compiler does not look for locks.
  static void end(LocalAuthenticator& asker, std::uint32_t user) {
    {
      const platform::Lock lock(asker.m_mutex);
      asker.m_asked.erase(user);
    }
    asker.m_answered.notify_all();
  }

  LocalAuthenticator& m_asker;
  const std::uint32_t m_user;
};

LocalAuthenticator::LocalAuthenticator(std::vector<std::string> operators)
    : LocalAuthenticator(std::move(operators), platform::steadyClock(), askSystem, kPatience) {}

LocalAuthenticator::LocalAuthenticator(std::vector<std::string> operators, platform::Clock& clock,
                                       LookUp lookUpUser, std::chrono::milliseconds patience)
    : m_operators(std::move(operators)),
      m_clock(clock),
      m_lookUp(std::move(lookUpUser)),
      m_patience(patience),
      m_calls(patience),
      m_selfNumber(::geteuid()),
      m_self{std::to_string(m_selfNumber), wbem::Role::Operator} {
  if (m_selfNumber == kRoot) {
    m_self.user = "root";
  } else if (const std::optional<Guest> guest = lookUp(m_selfNumber)) {
    m_self.user = guest->user;
  }
}

Authenticator::Admission LocalAuthenticator::admit(std::optional<std::uint32_t> peer) {
  if (!peer) {
    return {};
  }
  // Nobody's directory server decides whether these are served.
  if (*peer == kRoot) {
    return {Guest{"root", wbem::Role::Operator}};
  }
  if (*peer == m_selfNumber) {
    return {m_self};
  }
  {
    const platform::Lock lock(m_mutex);
    if (std::optional<Guest> guest = findKnown(*peer)) {
      return {std::move(guest)};
    }
  }
  const Place place(*this, *peer);
  std::optional<Guest> guest = place.isTaken() ? ask(*peer) : std::nullopt;
  if (!guest) {
    guest = findNameless(*peer);
  }
  const bool isBusy = !guest;
  return {std::move(guest), isBusy};
}

std::optional<wbem::Role> LocalAuthenticator::check(const std::string& /*user*/,
                                                    const std::string& /*password*/,
                                                    const std::string& /*address*/) {
  return std::nullopt;
}

std::optional<Authenticator::Guest> LocalAuthenticator::ask(std::uint32_t user) {
  const auto deadline = std::chrono::steady_clock::now() + m_patience;
  {
    const platform::Lock lock(m_mutex);
    while (true) {
      if (std::optional<Guest> guest = findKnown(user)) {
        return guest;
      }
      if (!m_asked.contains(user)) {
        break;
      }
      if (m_answered.wait_until(m_mutex, deadline) == std::cv_status::timeout) {
        return std::nullopt;
      }
    }
    m_asked.insert(user);
  }
  const Question question(*this, user);
  std::optional<Guest> guest = lookUp(user);
  if (guest) {
    const platform::Lock lock(m_mutex);
    if (m_known.size() >= kMostKnown) {
      m_known.clear();
    }
    m_known.insert_or_assign(user, Known{*guest, m_clock.now() + kMemory});
  }
  return guest;
}

std::optional<Authenticator::Guest> LocalAuthenticator::lookUp(std::uint32_t user) {
  // The call may outlive this object.
  const auto entry = std::make_shared<Entry>();
  const os::FileAnswer answer = m_calls.makeAt(
      std::to_string(user), [entry, user, lookUpUser = m_lookUp, operators = m_operators] {
        *entry = lookUpUser(user, operators);
      });
  if (answer == os::FileAnswer::InTime) {
    return Guest{entry->name.value_or(std::to_string(user)),
                 entry->isListed ? wbem::Role::Operator : wbem::Role::Reader};
  }
  if (answer == os::FileAnswer::GivenUp) {
    utils::logError(
        kLog, "quorveld::LocalAuthenticator::lookUp",
        "The system does not tell within %lld ms who user %u is; check its directory "
        "servers (see nsswitch.conf). Until it does, %s.",
        static_cast<long long>(m_patience.count()), user,
        m_operators.empty() ? "his number stands for his name" : "his requests are refused");
  }
  return findNameless(user);
}

// Where there is no list, the name is all that is missing.
std::optional<Authenticator::Guest> LocalAuthenticator::findNameless(std::uint32_t user) const {
  return m_operators.empty() ? std::optional(Guest{std::to_string(user), wbem::Role::Reader})
                             : std::nullopt;
}

std::optional<Authenticator::Guest> LocalAuthenticator::findKnown(std::uint32_t user) {
  const auto found = m_known.find(user);
  if (found == m_known.end()) {
    return std::nullopt;
  }
  const auto grace = m_asked.contains(user) ? kGrace : std::chrono::seconds(0);
  return m_clock.now() < found->second.until + grace ? std::optional(found->second.guest)
                                                     : std::nullopt;
}

}  // namespace quorveld
