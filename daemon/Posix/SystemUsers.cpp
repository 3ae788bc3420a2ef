#include "daemon/Posix/SystemUsers.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <grp.h>
#include <pwd.h>
#include <utility>

namespace quorveld {
namespace {

constexpr std::size_t kFirstRecordBytes = 1024;
constexpr std::size_t kMostRecordBytes = 1024 * 1024;
constexpr int kFirstGroups = 64;
constexpr int kMostGroups = 65'536;

// Calls one of the system's look-ups with a buffer that suffices. Returns what `use` makes of the
// record, nothing where there is none.
template <class Record, class LookUp, class Use>
auto lookUp(LookUp lookUp, Use use) -> std::optional<decltype(use(std::declval<Record&>()))> {
  Record entry{};
  Record* found = nullptr;
  std::vector<char> buffer(kFirstRecordBytes);
  while (lookUp(entry, buffer, found) == ERANGE && buffer.size() < kMostRecordBytes) {
    buffer.resize(buffer.size() * 2);
  }
  return found != nullptr ? std::optional(use(*found)) : std::nullopt;
}

std::optional<gid_t> findPrimaryGroup(const std::string& user) {
  return lookUp<passwd>(
      [&user](passwd& entry, std::vector<char>& buffer, passwd*& found) {
        return getpwnam_r(user.c_str(), &entry, buffer.data(), buffer.size(), &found);
      },
      [](const passwd& entry) { return entry.pw_gid; });
}

std::optional<gid_t> findGroup(const std::string& name) {
  return lookUp<group>(
      [&name](group& entry, std::vector<char>& buffer, group*& found) {
        return getgrnam_r(name.c_str(), &entry, buffer.data(), buffer.size(), &found);
      },
      [](const group& entry) { return entry.gr_gid; });
}

bool isMember(const std::string& user, const std::string& groupName) {
  const std::optional<gid_t> primary = findPrimaryGroup(user);
  const std::optional<gid_t> wanted = findGroup(groupName);
  if (!primary || !wanted) {
    return false;
  }
  int count = kFirstGroups;
  std::vector<gid_t> groups(static_cast<std::size_t>(count));
  while (getgrouplist(user.c_str(), *primary, groups.data(), &count) < 0 && count <= kMostGroups) {
    groups.resize(static_cast<std::size_t>(count));
  }
  groups.resize(std::min(groups.size(), static_cast<std::size_t>(std::max(count, 0))));
  return std::find(groups.begin(), groups.end(), *wanted) != groups.end();
}

}  // namespace

bool isListed(const std::vector<std::string>& list, const std::string& user) {
  return std::any_of(list.begin(), list.end(), [&user](const std::string& entry) {
    return entry.starts_with('@') ? isMember(user, entry.substr(1)) : entry == user;
  });
}

std::optional<std::string> findUserName(uid_t number) {
  return lookUp<passwd>(
      [number](passwd& entry, std::vector<char>& buffer, passwd*& found) {
        return getpwuid_r(number, &entry, buffer.data(), buffer.size(), &found);
      },
      [](const passwd& entry) { return std::string(entry.pw_name); });
}

}  // namespace quorveld
