#include "wbem/Status.h"

#include "Utils/Exception.h"

namespace wbem {
namespace {

template <class Error>
bool isA(const std::exception& error) {
  return dynamic_cast<const Error*>(&error) != nullptr;
}

struct ExceptionStatus {
  bool (*matches)(const std::exception& error);
  Status status;
};

// An exception that is not here is a failure without a closer reason.
constexpr ExceptionStatus kExceptionStatuses[] = {
    {isA<utils::ENotSupported>, Status::NotSupported},
    {isA<utils::EInvalidParameter>, Status::InvalidParameter},
    {isA<utils::ESyntaxError>, Status::InvalidParameter},
    {isA<utils::EForbidden>, Status::AccessDenied},
    {isA<utils::EUnspecifiedError>, Status::Failed},
};

}  // namespace

std::string_view getStatusName(Status status) {
  switch (status) {
    case Status::Failed:
      return "CIM_ERR_FAILED";
    case Status::AccessDenied:
      return "CIM_ERR_ACCESS_DENIED";
    case Status::InvalidNamespace:
      return "CIM_ERR_INVALID_NAMESPACE";
    case Status::InvalidParameter:
      return "CIM_ERR_INVALID_PARAMETER";
    case Status::InvalidClass:
      return "CIM_ERR_INVALID_CLASS";
    case Status::NotFound:
      return "CIM_ERR_NOT_FOUND";
    case Status::NotSupported:
      return "CIM_ERR_NOT_SUPPORTED";
    case Status::NoSuchProperty:
      return "CIM_ERR_NO_SUCH_PROPERTY";
    case Status::TypeMismatch:
      return "CIM_ERR_TYPE_MISMATCH";
    case Status::MethodNotAvailable:
      return "CIM_ERR_METHOD_NOT_AVAILABLE";
    case Status::MethodNotFound:
      return "CIM_ERR_METHOD_NOT_FOUND";
    case Status::InvalidEnumerationContext:
      return "CIM_ERR_INVALID_ENUMERATION_CONTEXT";
    case Status::InvalidOperationTimeout:
      return "CIM_ERR_INVALID_OPERATION_TIMEOUT";
    case Status::FilteredEnumerationNotSupported:
      return "CIM_ERR_FILTERED_ENUMERATION_NOT_SUPPORTED";
    case Status::ContinuationOnErrorNotSupported:
      return "CIM_ERR_CONTINUATION_ON_ERROR_NOT_SUPPORTED";
    case Status::ServerLimitsExceeded:
      return "CIM_ERR_SERVER_LIMITS_EXCEEDED";
  }
  return {};
}

Status toStatus(const std::exception& error) {
  if (const auto* fault = dynamic_cast<const StatusFault*>(&error)) {
    return fault->status();
  }
  for (const ExceptionStatus& entry : kExceptionStatuses) {
    if (entry.matches(error)) {
      return entry.status;
    }
  }
  return Status::Failed;
}

}  // namespace wbem
