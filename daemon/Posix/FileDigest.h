// The SHA-256 of what a file has held since a certain time, for the audit: of what a method has
// read of it, as far as the file has not changed meanwhile, which its stamp tells.

#ifndef ORVEX_DAEMON_POSIX_FILEDIGEST_H_
#define ORVEX_DAEMON_POSIX_FILEDIGEST_H_

#include <optional>
#include <string>

#include "platform/Posix/PrivateFile.h"
#include "wbem/Audit.h"

namespace quorveld {

// Any thread.
class FileDigest final : public wbem::FileEvidence {
 public:
  // Looks at the file, and does not open it yet. A file system that does not answer is waited for a
  // few seconds, here and below.
  explicit FileDigest(std::string path);

  [[nodiscard]] std::string digest() const override;

 private:
  const std::string m_path;
  std::optional<platform::FileStamp> m_stamp;  // null: it is not there
  bool m_isAnswered = false;                   // by the file system
};

}  // namespace quorveld

#endif  // ORVEX_DAEMON_POSIX_FILEDIGEST_H_
