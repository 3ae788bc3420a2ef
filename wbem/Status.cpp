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
