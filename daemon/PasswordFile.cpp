#include "daemon/PasswordFile.h"

#include <chrono>
#include <sstream>
#include <string_view>
#include <utility>

#include "Utils/Conversions.h"
#include "Utils/Log.h"
#include "daemon/DaemonConfig.h"
#include "daemon/Posix/PasswordHash.h"

namespace quorveld {
namespace {

constexpr utils::LogSource kLog{"PasswordFile"};

constexpr std::size_t kMostBytes = 4 * 1024 * 1024;
// Some file systems keep whole seconds, or those of another machine's clock.
constexpr std::int64_t kGrain = 3'000'000'000;

constexpr std::pair<std::string_view, wbem::Role> kRoles[] = {
    {"reader", wbem::Role::Reader},
    {"operator", wbem::Role::Operator},
};

// Checked in the place of an unknown user's, so that who guesses names learns nothing from the
// time: a hash of SHA-512 with the usual number of rounds, of no password.
constexpr const char* kNobodysHash =
    "$6$quorveld.nobody$"
    "......................................................................................";

std::optional<wbem::Role> findRole(std::string_view text) {
  for (const auto& [name, role] : kRoles) {
    if (text == name) {
      return role;
    }
  }
  return std::nullopt;
}

std::int64_t timeOfFiles() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
             std::chrono::system_clock::now().time_since_epoch())
      .count();
}

// Adds the user of a line; `place` is where that stands, for faults.
void addUser(PasswordFileUsers& users, const std::string& line, const std::string& place) {
  // A hash may hold colons, names and roles do not.
  const std::size_t first = line.find(':');
  const std::size_t last = line.rfind(':');
  if (first == std::string::npos || first == 0 || first == last) {
    throw ConfigurationFault(place + "is not USER:HASH:ROLE; write it so");
  }
  const std::string user = line.substr(0, first);
  const std::string hash = line.substr(first + 1, last - first - 1);
  const std::string named = place + "user '" + user + "' ";
  if (!isPasswordHash(hash)) {
    throw ConfigurationFault(
        named + "has a hash that is damaged or of a weak method; make one with: openssl passwd -6");
  }
  const std::optional<wbem::Role> role = findRole(std::string_view(line).substr(last + 1));
  if (!role) {
    throw ConfigurationFault(place + "'" + line.substr(last + 1) +
                             "' is no role; write reader or operator");
  }
  if (!users.emplace(user, PasswordFileUser{hash, *role}).second) {
    throw ConfigurationFault(named + "is there a second time; leave one of the lines out");
  }
}

}  // namespace

PasswordFileUsers parsePasswordFile(const std::string& path, const std::string& content) {
  PasswordFileUsers users;
  std::istringstream lines(content);
  std::string text;
  for (unsigned number = 1; std::getline(lines, text); ++number) {
    const std::string line = utils::trim(text.substr(0, text.find('\r')));
    if (!line.empty() && !line.starts_with('#')) {
      addUser(users, line, "password-file: " + path + ":" + std::to_string(number) + ": ");
    }
  }
  return users;
}

PasswordFileAuthenticator::PasswordFileAuthenticator(std::string path)
    : PasswordFileAuthenticator(std::move(path), timeOfFiles) {}

PasswordFileAuthenticator::PasswordFileAuthenticator(std::string path, Now now)
    : m_path(std::move(path)), m_now(std::move(now)), m_reading(read(m_path, m_now)) {}

std::optional<wbem::Role> PasswordFileAuthenticator::check(const std::string& user,
                                                           const std::string& password,
                                                           const std::string& /*address*/) {
  std::string hash = kNobodysHash;
  std::optional<wbem::Role> role;
  {
    const utils::ScopedLock lock(m_lock);
    readIfChanged();
    if (m_reading && !m_reading->users.empty()) {
      const PasswordFileUsers& users = m_reading->users;
      const auto found = users.find(user);
      // An unknown user's check is as costly as those of this file's.
      hash = found != users.end() ? found->second.hash : users.begin()->second.hash;
      role = found != users.end() ? std::optional(found->second.role) : std::nullopt;
    }
  }
  // Outside of the lock: the check takes some hundred milliseconds, and revision() must not wait.
  return matchesPasswordHash(password, hash) ? role : std::nullopt;
}

std::uint64_t PasswordFileAuthenticator::revision() {
  const utils::ScopedLock lock(m_lock);
  readIfChanged();
  return m_revision;
}

PasswordFileAuthenticator::Reading PasswordFileAuthenticator::read(const std::string& path,
                                                                   const Now& now) {
  Reading reading;
  const std::int64_t begin = now();
  try {
    const platform::PrivateFile file =
        platform::readPrivateFile(path, platform::Privacy::Secret, kMostBytes);
    reading.stamp = file.stamp;
    reading.users = parsePasswordFile(path, file.content);
  } catch (const platform::PrivateFileFault& fault) {
    throw ConfigurationFault(std::string("password-file: ") + fault.what());
  }
  reading.hasSettled = begin - reading.stamp.changed > kGrain;
  return reading;
}

void PasswordFileAuthenticator::readIfChanged() {
  if (m_reading && m_reading->hasSettled && platform::findStamp(m_path) == m_reading->stamp) {
    return;
  }
  try {
    Reading reading = read(m_path, m_now);
    if (!m_reading || m_reading->users != reading.users) {
      ++m_revision;
    }
    if (!m_fault.empty()) {
      utils::logError(kLog, "quorveld::PasswordFileAuthenticator::readIfChanged",
                      "password-file: '%s' is in order again. Its users can log in.",
                      m_path.c_str());
    }
    m_reading = std::move(reading);
    m_fault.clear();
  } catch (const ConfigurationFault& fault) {
    if (m_reading) {
      ++m_revision;
    }
    m_reading.reset();
    // Once for each fault, however often the file is asked for.
    if (m_fault != fault.what()) {
      m_fault = fault.what();
      utils::logError(kLog, "quorveld::PasswordFileAuthenticator::readIfChanged",
                      "%s. Nobody can log in until then.", fault.what());
    }
  }
}

}  // namespace quorveld
