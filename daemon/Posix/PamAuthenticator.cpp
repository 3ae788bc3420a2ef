#include "daemon/Posix/PamAuthenticator.h"

#include <cstdlib>
#include <cstring>
#include <security/pam_appl.h>
#include <utility>

#include "Utils/Log.h"
#include "daemon/Posix/SystemUsers.h"

namespace quorveld {
namespace {

constexpr utils::LogSource kLog{"PamAuthenticator"};

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

}  // namespace

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
