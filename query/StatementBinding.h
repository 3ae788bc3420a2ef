// Puts a tree into the terms of a schema, and refuses what can have no meaning there: unknown
// classes and properties, values of different sorts compared, arrays as values.

#ifndef ORVEX_QUERY_STATEMENTBINDING_H_
#define ORVEX_QUERY_STATEMENTBINDING_H_

#include <string_view>

#include "core/CimSchema.h"
#include "query/Statement.h"

namespace query {

// `text` is what the statement was read from. A statement that names no class is about instances of
// any. Throws QueryFault: UnknownClass, Invalid.
void bindStatement(Statement& statement, std::string_view text, const core::CimSchema& schema);

}  // namespace query

#endif  // ORVEX_QUERY_STATEMENTBINDING_H_
