#include "midapi/Kernel/AskingLocks.h"

#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

#include "midapi/Kernel/Errands.h"
#include "midapi/Kernel/FileLockTable.h"

namespace ma {
namespace {

std::filesystem::path folderOf(const std::filesystem::path& common, uid_t user) {
  return common / ("orvex-asks." + std::to_string(user));
}

// Others may write the common folder, and put there what they like.
bool isOurFolder(const std::filesystem::path& folder) {
  struct stat state {};
  return ::lstat(folder.c_str(), &state) == 0 && S_ISDIR(state.st_mode) &&
         state.st_uid == ::geteuid() && (state.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

SystemTime fromSeconds(std::int64_t seconds) {
  return SystemTime(std::chrono::seconds(seconds));
}

}  // namespace

std::vector<std::uint8_t> AskingLocks::orderFor(const std::string& name) const {
  if (m_common.empty()) {
    return {};
  }
  const std::filesystem::path folder = folderOf(m_common, ::geteuid());
  static_cast<void>(::mkdir(folder.c_str(), 0755));
  if (!isOurFolder(folder)) {
    return {};
  }
  const LockHead head{std::chrono::nanoseconds(m_patience).count()};
  const std::string path = folder / name;
  std::vector<std::uint8_t> order(sizeof head);
  std::memcpy(order.data(), &head, sizeof head);
  order.insert(order.end(), path.begin(), path.end());
  return order;
}

std::optional<SystemTime> AskingLocks::heldSince(int error,
                                                 const std::vector<std::uint8_t>& reply) {
  std::int64_t seconds = 0;
  if (error != EALREADY || reply.size() != sizeof seconds) {
    return std::nullopt;
  }
  std::memcpy(&seconds, reply.data(), sizeof seconds);
  return fromSeconds(seconds);
}

std::optional<SystemTime> AskingLocks::heldByRootSince(const std::string& name) const {
  if (m_common.empty() || ::geteuid() == 0) {
    return std::nullopt;
  }
  const std::filesystem::path file = folderOf(m_common, 0) / name;
  struct stat state {};
  if (::lstat(file.c_str(), &state) != 0 || state.st_uid != 0) {
    return std::nullopt;
  }
  const SystemTime since = fromSeconds(state.st_mtim.tv_sec);
  const bool isOld = std::chrono::system_clock::now() - since >= m_patience;
  return isOld && isFileLocked(file) ? std::optional(since) : std::nullopt;
}

}  // namespace ma
