// The queries of requests: read in the request's namespace, refused by the status codes of DSP0200.

#ifndef ORVEX_WBEM_QUERIES_H_
#define ORVEX_WBEM_QUERIES_H_

#include <optional>
#include <string>

#include "query/Query.h"
#include "wbem/OperationCall.h"
#include "wbem/Status.h"

namespace wbem {

struct QueryParameters {
  const char* language;  // the names of the two
  const char* query;
  Status whenUnsupported;  // for a query that needs more of its language than is taken
};

// Reads a query that an operation requires. Throws StatusFault:
// CIM_ERR_QUERY_LANGUAGE_NOT_SUPPORTED, CIM_ERR_INVALID_QUERY, CIM_ERR_INVALID_CLASS, and as
// OperationParameters for what is missing.
[[nodiscard]] query::Query demandQuery(const OperationCall& call,
                                       const QueryParameters& parameters);

// Reads FilterQuery and FilterQueryLanguage of an enumeration, nothing where it has none. A
// condition alone (DMTF:FQL) is about the class of the parameter ClassName where that is one of the
// namespace, else about instances of any. Throws as demandQuery.
[[nodiscard]] std::optional<query::Query> readFilter(const OperationCall& call);

}  // namespace wbem

#endif  // ORVEX_WBEM_QUERIES_H_
