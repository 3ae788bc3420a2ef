// The audit in the system log: facility authpriv, identity "quorveld".
//
// It speaks to the log's socket itself: the C library has one identity and facility for a process,
// and that is the agents'.

#ifndef ORVEX_DAEMON_POSIX_SYSTEMLOGAUDIT_H_
#define ORVEX_DAEMON_POSIX_SYSTEMLOGAUDIT_H_

#include <chrono>
#include <cstddef>
#include <string>
#include <utility>

#include "daemon/AuditQueue.h"
#include "platform/Posix/SystemLog.h"

namespace quorveld {

class SystemLogAudit final : public AuditSink {
 public:
  static constexpr std::size_t kMostBytes = 1024;  // of one text that comes from outside

  explicit SystemLogAudit(std::string socket = platform::kSystemLogSocket)
      : m_socket(std::move(socket)) {}

  // A record that there is nobody to take goes to the agents' log and to standard error.
  [[nodiscard]] bool write(const wbem::AuditRecord& record,
                           std::chrono::milliseconds patience) noexcept override;
  // To standard error: "quorveld: audit: ...".
  void writeElsewhere(const wbem::AuditRecord& record) noexcept override;

 private:
  const std::string m_socket;
};

// Returns the record as one line: user="..." address="..." role="..." action="..." result="..."
// target="..." and the details, each as name="...", with quotes, backslashes, what would disturb a
// terminal (see Utils/Printable.h) and bytes that are no UTF-8 escaped, and what is too long cut.
[[nodiscard]] std::string formatAudit(const wbem::AuditRecord& record);

}  // namespace quorveld

#endif  // ORVEX_DAEMON_POSIX_SYSTEMLOGAUDIT_H_
