// The record of every attempt to change something: who, from where, what, on what, with which
// result; and of each firmware that is installed, what was put where.

#ifndef ORVEX_WBEM_AUDIT_H_
#define ORVEX_WBEM_AUDIT_H_

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "wbem/Caller.h"

namespace wbem {

struct AuditRecord {
  Caller caller;
  std::string action;  // "ModifyInstance", the name of a method, "JobEnd"
  std::string result;  // "4096", "CIM_ERR_ACCESS_DENIED: ..."
  std::string target;  // object path
  // Of a long text of the client, the begin alone.

  // What there is to say further of an installation, each with its name: "adapter", "file",
  // "sha256", "options", "old", "new", "job".
  std::vector<std::pair<std::string, std::string>> details;
};

// What a file holds at one time.
class FileEvidence {
 public:
  FileEvidence() = default;
  FileEvidence(const FileEvidence&) = delete;
  FileEvidence& operator=(const FileEvidence&) = delete;
  virtual ~FileEvidence() = default;

  // Returns the SHA-256 of what the file has held since this was made, in hexadecimal digits; why
  // there is none where it has changed, or cannot be read. Reads the whole file.
  [[nodiscard]] virtual std::string digest() const = 0;
};

// Any thread calls; implementations neither throw nor wait.
class Audit {
 public:
  Audit() = default;
  Audit(const Audit&) = delete;
  Audit& operator=(const Audit&) = delete;
  virtual ~Audit() = default;

  virtual void write(const AuditRecord& record) noexcept = 0;

  // Returns what a record can say of the content of a file; null for nothing.
  [[nodiscard]] virtual std::unique_ptr<FileEvidence> watchFile(
      const std::string& /*path*/) noexcept {
    return nullptr;
  }
};

}  // namespace wbem

#endif  // ORVEX_WBEM_AUDIT_H_
