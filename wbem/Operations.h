// The operations that the server offers, with the parameters that each takes.

#ifndef ORVEX_WBEM_OPERATIONS_H_
#define ORVEX_WBEM_OPERATIONS_H_

#include <span>
#include <string_view>

#include "wbem/OperationCall.h"

namespace wbem {

struct Operation {
  std::string_view name;
  RunOperation run;
  std::span<const std::string_view> parameters;
  bool isChange;  // needs an operator, and is recorded
};

// Returns null for an operation that is not offered. Names are compared without regard to case.
[[nodiscard]] const Operation* findOperation(std::string_view name);

}  // namespace wbem

#endif  // ORVEX_WBEM_OPERATIONS_H_
