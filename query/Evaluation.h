// Whether a condition holds for an instance. Plain function, any thread.

#ifndef ORVEX_QUERY_EVALUATION_H_
#define ORVEX_QUERY_EVALUATION_H_

#include "query/Comparison.h"
#include "query/InstanceView.h"
#include "query/Statement.h"

namespace query {

// The condition is bound (see query/StatementBinding.h). What a condition asks of a property that
// is NULL is unknown, and so is what depends on it alone; an array without an element has none for
// ANY, and EVERY holds for it. ISA of an embedded instance that is not there is unknown.
[[nodiscard]] Truth evaluate(const Condition& condition, const InstanceView& instance);

}  // namespace query

#endif  // ORVEX_QUERY_EVALUATION_H_
