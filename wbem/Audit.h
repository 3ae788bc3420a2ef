// The record of every attempt to change something: who, from where, what, on what, with which
// result.

#ifndef ORVEX_WBEM_AUDIT_H_
#define ORVEX_WBEM_AUDIT_H_

#include <string>

#include "wbem/Caller.h"

namespace wbem {

struct AuditRecord {
  Caller caller;
  std::string action;  // "ModifyInstance", or the name of a method
  std::string result;  // "4096", "CIM_ERR_ACCESS_DENIED: ..."
  std::string target;  // object path
  // Of a long text of the client, the begin alone.
};

// Any thread calls; implementations do not throw.
class Audit {
 public:
  Audit() = default;
  Audit(const Audit&) = delete;
  Audit& operator=(const Audit&) = delete;
  virtual ~Audit() = default;

  virtual void write(const AuditRecord& record) noexcept = 0;
};

}  // namespace wbem

#endif  // ORVEX_WBEM_AUDIT_H_
