// One call of a CIM method, and its answer with the reason that the log gives where the method
// refuses.

#ifndef ORVEX_CLIENT_METHODCALL_H_
#define ORVEX_CLIENT_METHODCALL_H_

#include <cstdint>
#include <string>

#include "client/Snapshot.h"
#include "core/CimInstance.h"

namespace client {

struct MethodAnswer {
  std::uint32_t returnValue = 0;
  std::string returnText;  // its meaning; empty for a method that is not known
  std::string jobPath;     // empty when no job was created
  // Why the method refused, beginning with the type of the failure ("EInvalidUri:..."); empty for a
  // success and where nothing was logged.
  std::string reason;
  Properties outputs;  // the output arguments

  // Done, or going on as a job.
  [[nodiscard]] bool isAccepted() const;
};

// Calls the method. The caller holds the broker's request. Throws what the method throws.
[[nodiscard]] MethodAnswer callMethod(core::CimInstance& instance, const std::string& method,
                                      core::CimPropertyList& in, core::CimPropertyList& out);

}  // namespace client

#endif  // ORVEX_CLIENT_METHODCALL_H_
