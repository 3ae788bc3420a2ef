// Queries in the words of a user: read in this process, and refused alike wherever they are read.

#ifndef ORVEX_CLIENT_QUERIES_H_
#define ORVEX_CLIENT_QUERIES_H_

#include <string>

#include "client/Fault.h"
#include "client/Snapshot.h"
#include "core/CimSchema.h"
#include "query/Query.h"

namespace client {

// `language` is its name. Throws as refuseQuery: usage, but for a class that there is not.
[[nodiscard]] query::Query parseQuery(const std::string& text, const std::string& language,
                                      const core::CimSchema& schema);

// Throws Fault: "the query is refused: REASON".
[[noreturn]] void refuseQuery(const std::string& reason, Fault::Kind kind);

// Leaves an instance the properties that the query selects.
void keepSelected(InstanceSnapshot& instance, const query::Query& query);

}  // namespace client

#endif  // ORVEX_CLIENT_QUERIES_H_
