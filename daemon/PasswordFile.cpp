#include "daemon/PasswordFile.h"

#include <fstream>
#include <string_view>
#include <system_error>
#include <utility>

#include "Utils/Conversions.h"
#include "Utils/Log.h"
#include "daemon/DaemonConfig.h"
#include "daemon/Posix/PasswordHash.h"

namespace quorveld {
namespace {

namespace fs = std::filesystem;

constexpr utils::LogSource kLog{"PasswordFile"};

constexpr fs::perms kOfOthers = fs::perms::group_all | fs::perms::others_all;

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

// Throws ConfigurationFault for what is no regular file, cannot be read, or is not the owner's
// alone.
std::ifstream openPrivateFile(const std::string& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  std::ifstream file;
  // To open a pipe would wait for its writer.
  if (fs::is_regular_file(status)) {
    file.open(path);
  }
  if (!file.is_open()) {
    throw ConfigurationFault("password-file: '" + path +
                             "' cannot be read; check the path and its permissions");
  }
  if ((status.permissions() & kOfOthers) != fs::perms::none) {
    throw ConfigurationFault("password-file: '" + path +
                             "' can be read or changed by others than its owner; run: chmod 600 " +
                             path);
  }
  return file;
}

}  // namespace

PasswordFileAuthenticator::PasswordFileAuthenticator(std::string path)
    : m_path(std::move(path)), m_stamp(stampOf(m_path)), m_users(read(m_path)) {}

std::optional<wbem::Role> PasswordFileAuthenticator::check(const std::string& user,
                                                           const std::string& password,
                                                           const std::string& /*address*/) {
  std::string hash = kNobodysHash;
  std::optional<wbem::Role> role;
  {
    const utils::ScopedLock lock(m_lock);
    readIfChanged();
    const auto found = m_users.find(user);
    if (found != m_users.end()) {
      hash = found->second.hash;
      role = found->second.role;
    } else if (!m_users.empty()) {
      // As costly as the hashes of this file.
      hash = m_users.begin()->second.hash;
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

std::optional<PasswordFileAuthenticator::Stamp> PasswordFileAuthenticator::stampOf(
    const std::string& path) {
  std::error_code error;
  Stamp stamp;
  stamp.time = fs::last_write_time(path, error);
  if (error) {
    return std::nullopt;
  }
  stamp.size = fs::file_size(path, error);
  stamp.permissions = fs::status(path, error).permissions();
  return stamp;
}

PasswordFileAuthenticator::Users PasswordFileAuthenticator::read(const std::string& path) {
  std::ifstream file = openPrivateFile(path);
  Users users;
  std::string text;
  for (unsigned number = 1; std::getline(file, text); ++number) {
    const std::string line = utils::trim(text.substr(0, text.find('\r')));
    if (!line.empty() && !line.starts_with('#')) {
      addUser(users, line, "password-file: " + path + ":" + std::to_string(number) + ": ");
    }
  }
  if (file.bad()) {
    throw ConfigurationFault("password-file: '" + path +
                             "' could not be read to its end; check the disk it is on");
  }
  return users;
}

void PasswordFileAuthenticator::addUser(Users& users, const std::string& line,
                                        const std::string& place) {
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
  if (!users.emplace(user, User{hash, *role}).second) {
    throw ConfigurationFault(named + "is there a second time; leave one of the lines out");
  }
}

void PasswordFileAuthenticator::readIfChanged() {
  std::optional<Stamp> stamp = stampOf(m_path);
  if (stamp == m_stamp) {
    return;
  }
  // Also of a file that turns out to be damaged: it is read, and logged, once.
  m_stamp = std::move(stamp);
  try {
    m_users = read(m_path);
    ++m_revision;
  } catch (const ConfigurationFault& fault) {
    utils::logError(kLog, "quorveld::PasswordFileAuthenticator::readIfChanged",
                    "%s. The users that were read before stay in force.", fault.what());
  }
}

}  // namespace quorveld
