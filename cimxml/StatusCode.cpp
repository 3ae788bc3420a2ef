#include "cimxml/StatusCode.h"

namespace cimxml {

std::string_view getStatusName(StatusCode code) {
  switch (code) {
    case StatusCode::Failed:
      return "CIM_ERR_FAILED";
    case StatusCode::AccessDenied:
      return "CIM_ERR_ACCESS_DENIED";
    case StatusCode::InvalidNamespace:
      return "CIM_ERR_INVALID_NAMESPACE";
    case StatusCode::InvalidParameter:
      return "CIM_ERR_INVALID_PARAMETER";
    case StatusCode::InvalidClass:
      return "CIM_ERR_INVALID_CLASS";
    case StatusCode::NotFound:
      return "CIM_ERR_NOT_FOUND";
    case StatusCode::NotSupported:
      return "CIM_ERR_NOT_SUPPORTED";
    case StatusCode::ClassHasChildren:
      return "CIM_ERR_CLASS_HAS_CHILDREN";
    case StatusCode::ClassHasInstances:
      return "CIM_ERR_CLASS_HAS_INSTANCES";
    case StatusCode::InvalidSuperclass:
      return "CIM_ERR_INVALID_SUPERCLASS";
    case StatusCode::AlreadyExists:
      return "CIM_ERR_ALREADY_EXISTS";
    case StatusCode::NoSuchProperty:
      return "CIM_ERR_NO_SUCH_PROPERTY";
    case StatusCode::TypeMismatch:
      return "CIM_ERR_TYPE_MISMATCH";
    case StatusCode::QueryLanguageNotSupported:
      return "CIM_ERR_QUERY_LANGUAGE_NOT_SUPPORTED";
    case StatusCode::InvalidQuery:
      return "CIM_ERR_INVALID_QUERY";
    case StatusCode::MethodNotAvailable:
      return "CIM_ERR_METHOD_NOT_AVAILABLE";
    case StatusCode::MethodNotFound:
      return "CIM_ERR_METHOD_NOT_FOUND";
    case StatusCode::NamespaceNotEmpty:
      return "CIM_ERR_NAMESPACE_NOT_EMPTY";
    case StatusCode::InvalidEnumerationContext:
      return "CIM_ERR_INVALID_ENUMERATION_CONTEXT";
    case StatusCode::InvalidOperationTimeout:
      return "CIM_ERR_INVALID_OPERATION_TIMEOUT";
    case StatusCode::PullHasBeenAbandoned:
      return "CIM_ERR_PULL_HAS_BEEN_ABANDONED";
    case StatusCode::PullCannotBeAbandoned:
      return "CIM_ERR_PULL_CANNOT_BE_ABANDONED";
    case StatusCode::FilteredEnumerationNotSupported:
      return "CIM_ERR_FILTERED_ENUMERATION_NOT_SUPPORTED";
    case StatusCode::ContinuationOnErrorNotSupported:
      return "CIM_ERR_CONTINUATION_ON_ERROR_NOT_SUPPORTED";
    case StatusCode::ServerLimitsExceeded:
      return "CIM_ERR_SERVER_LIMITS_EXCEEDED";
    case StatusCode::ServerIsShuttingDown:
      return "CIM_ERR_SERVER_IS_SHUTTING_DOWN";
    case StatusCode::QueryFeatureNotSupported:
      return "CIM_ERR_QUERY_FEATURE_NOT_SUPPORTED";
  }
  return {};
}

}  // namespace cimxml
