// The record of every attempt to change something: who, from where, what, on what, with which
// result; and of each firmware that is installed, what was put where.

#ifndef ORVEX_WBEM_AUDIT_H_
#define ORVEX_WBEM_AUDIT_H_

#include <cstdint>
#include <span>
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

// Any thread calls, without the broker's request: it may be held up for a moment, so that the
// record is where it belongs before the client has an answer. Implementations do not throw.
class Audit {
 public:
  Audit() = default;
  Audit(const Audit&) = delete;
  Audit& operator=(const Audit&) = delete;
  virtual ~Audit() = default;

  virtual void write(const AuditRecord& record) noexcept = 0;

  // Returns how a record names a content: its SHA-256 in hexadecimal digits; empty where there is
  // no such name.
  [[nodiscard]] virtual std::string digest(
      std::span<const std::uint8_t> /*content*/) const noexcept {
    return {};
  }
};

}  // namespace wbem

#endif  // ORVEX_WBEM_AUDIT_H_
