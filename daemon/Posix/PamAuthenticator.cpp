#include "daemon/Posix/PamAuthenticator.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <grp.h>
#include <pwd.h>
#include <security/pam_appl.h>
#include <unistd.h>
#include <utility>

#include "Utils/Log.h"

namespace quorveld {
namespace {

constexpr utils::LogSource kLog{"PamAuthenticator"};

constexpr std::size_t kFirstRecordBytes = 1024;
constexpr std::size_t kMostRecordBytes = 1024 * 1024;
constexpr int kFirstGroups = 64;
constexpr int kMostGroups = 65'536;

extern "C" {

// PAM frees what is returned.
static int answerPam(int count, const pam_message** messages, pam_response** responses,
                     void* data) {
  if (count <= 0 || count > PAM_MAX_NUM_MSG) {
    return PAM_CONV_ERR;
  }
  void* const memory =
      std::calloc(static_cast<std::size_t>(count), sizeof(pam_response));  // NOLINT(*-no-malloc)
  auto* const answers = static_cast<pam_response*>(memory);
  if (answers == nullptr) {
    return PAM_BUF_ERR;
  }
  for (int i = 0; i < count; ++i) {
    if (messages[i]->msg_style == PAM_PROMPT_ECHO_OFF) {
      answers[i].resp = strdup(static_cast<const std::string*>(data)->c_str());
    }
  }
  *responses = answers;
  return PAM_SUCCESS;
}

static void passNoTime(int /*result*/, unsigned /*microseconds*/, void* /*data*/) {}
}

// One conversation with PAM, ended with the object.
class Conversation {
 public:
  Conversation(const char* service, const std::string& user, const std::string& password,
               const std::string& address, const char* directory)
      : m_password(password) {
    const pam_conv functions{answerPam, &m_password};
    m_result = pam_start_confdir(service, user.c_str(), &functions, directory, &m_handle);
    if (m_result == PAM_SUCCESS) {
      m_result = pam_set_item(m_handle, PAM_FAIL_DELAY, reinterpret_cast<const void*>(passNoTime));
    }
    if (m_result == PAM_SUCCESS) {
      m_result = pam_set_item(m_handle, PAM_RHOST, address.c_str());
    }
  }
  Conversation(const Conversation&) = delete;
  Conversation& operator=(const Conversation&) = delete;
  ~Conversation() {
    if (m_handle != nullptr) {
      pam_end(m_handle, m_result);
    }
  }

  [[nodiscard]] bool passes(int (*step)(pam_handle_t*, int)) {
    if (m_result == PAM_SUCCESS) {
      m_result = step(m_handle, PAM_SILENT | PAM_DISALLOW_NULL_AUTHTOK);
    }
    return m_result == PAM_SUCCESS;
  }

  // What keeps everybody out is the administrator's to know of.
  void logFault(const char* service) const {
    const bool isOrdinary = m_result == PAM_AUTH_ERR || m_result == PAM_USER_UNKNOWN ||
                            m_result == PAM_MAXTRIES || m_result == PAM_ACCT_EXPIRED ||
                            m_result == PAM_PERM_DENIED || m_result == PAM_NEW_AUTHTOK_REQD;
    if (!isOrdinary) {
      utils::logError(kLog, "quorveld::verifyByPam", "PAM, service %s: %s", service,
                      pam_strerror(m_handle, m_result));
    }
  }

 private:
  std::string m_password;
  pam_handle_t* m_handle = nullptr;
  int m_result = PAM_SYSTEM_ERR;
};

std::optional<gid_t> findPrimaryGroup(const std::string& user) {
  passwd entry{};
  passwd* found = nullptr;
  std::vector<char> buffer(kFirstRecordBytes);
  while (getpwnam_r(user.c_str(), &entry, buffer.data(), buffer.size(), &found) == ERANGE &&
         buffer.size() < kMostRecordBytes) {
    buffer.resize(buffer.size() * 2);
  }
  return found == nullptr ? std::nullopt : std::optional(found->pw_gid);
}

std::optional<gid_t> findGroup(const std::string& name) {
  group entry{};
  group* found = nullptr;
  std::vector<char> buffer(kFirstRecordBytes);
  while (getgrnam_r(name.c_str(), &entry, buffer.data(), buffer.size(), &found) == ERANGE &&
         buffer.size() < kMostRecordBytes) {
    buffer.resize(buffer.size() * 2);
  }
  return found == nullptr ? std::nullopt : std::optional(found->gr_gid);
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

bool verifyByPam(const char* service, const std::string& user, const std::string& password,
                 const std::string& address, const char* directory) {
  Conversation conversation(service, user, password, address, directory);
  if (conversation.passes(pam_authenticate) && conversation.passes(pam_acct_mgmt)) {
    return true;
  }
  conversation.logFault(service);
  return false;
}

PamAuthenticator::PamAuthenticator(Roles roles)
    : PamAuthenticator(std::move(roles), [](const std::string& user, const std::string& password,
                                            const std::string& address) {
        return verifyByPam(kService, user, password, address);
      }) {}

PamAuthenticator::PamAuthenticator(Roles roles, Verify verify)
    : m_roles(std::move(roles)), m_verify(std::move(verify)) {}

std::optional<wbem::Role> PamAuthenticator::check(const std::string& user,
                                                  const std::string& password,
                                                  const std::string& address) {
  const utils::ScopedLock lock(m_lock);
  if (!m_verify(user, password, address)) {
    return std::nullopt;
  }
  if (isListed(m_roles.operators, user)) {
    return wbem::Role::Operator;
  }
  return isListed(m_roles.readers, user) ? std::optional(wbem::Role::Reader) : std::nullopt;
}

}  // namespace quorveld
