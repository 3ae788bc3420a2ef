// The CIM status codes (DSP0200, 5.2.6): how a server says why it refuses an operation.

#ifndef ORVEX_CIMXML_STATUSCODE_H_
#define ORVEX_CIMXML_STATUSCODE_H_

#include <string_view>

namespace cimxml {

enum class StatusCode : unsigned {
  Failed = 1,
  AccessDenied = 2,
  InvalidNamespace = 3,
  InvalidParameter = 4,
  InvalidClass = 5,
  NotFound = 6,
  NotSupported = 7,
  ClassHasChildren = 8,
  ClassHasInstances = 9,
  InvalidSuperclass = 10,
  AlreadyExists = 11,
  NoSuchProperty = 12,
  TypeMismatch = 13,
  QueryLanguageNotSupported = 14,
  InvalidQuery = 15,
  MethodNotAvailable = 16,
  MethodNotFound = 17,
  NamespaceNotEmpty = 20,
  InvalidEnumerationContext = 21,
  InvalidOperationTimeout = 22,
  PullHasBeenAbandoned = 23,
  PullCannotBeAbandoned = 24,
  FilteredEnumerationNotSupported = 25,
  ContinuationOnErrorNotSupported = 26,
  ServerLimitsExceeded = 27,
  ServerIsShuttingDown = 28,
  QueryFeatureNotSupported = 29,
};

// Returns the name that the standard gives it, "CIM_ERR_FAILED"; empty for a number that the
// standard does not have, which a message may hold all the same.
[[nodiscard]] std::string_view getStatusName(StatusCode code);

}  // namespace cimxml

#endif  // ORVEX_CIMXML_STATUSCODE_H_
