#include <gmock/gmock.h>
#include <new>
#include <stdexcept>

#include "Utils/Exception.h"
#include "wbem/Status.h"

namespace {

using wbem::getStatusName;
using wbem::Status;
using wbem::toStatus;

TEST(Status, OfAnExceptionIsThatOfTheTable) {
  EXPECT_EQ(toStatus(utils::ENotSupported("x")), Status::NotSupported);
  EXPECT_EQ(toStatus(utils::EInvalidParameter("x")), Status::InvalidParameter);
  EXPECT_EQ(toStatus(utils::ESyntaxError("x")), Status::InvalidParameter);
  EXPECT_EQ(toStatus(utils::EForbidden("x")), Status::AccessDenied);
  EXPECT_EQ(toStatus(utils::EUnspecifiedError("x")), Status::Failed);
}

TEST(Status, OfAnyOtherExceptionIsAFailure) {
  EXPECT_EQ(toStatus(utils::Exception("%d", 1)), Status::Failed);
  EXPECT_EQ(toStatus(std::runtime_error("x")), Status::Failed);
  EXPECT_EQ(toStatus(std::bad_alloc()), Status::Failed);
}

TEST(Status, OfAServersOwnFaultIsWhatItSays) {
  const wbem::StatusFault fault(Status::MethodNotFound, "no such method");

  EXPECT_EQ(toStatus(fault), Status::MethodNotFound);
  EXPECT_STREQ(fault.what(), "no such method");
}

TEST(Status, HasTheNumberAndTheNameOfTheStandard) {
  struct Case {
    unsigned number;
    Status status;
    const char* name;
  };
  for (const Case& one : {
           Case{1, Status::Failed, "CIM_ERR_FAILED"},
           Case{2, Status::AccessDenied, "CIM_ERR_ACCESS_DENIED"},
           Case{3, Status::InvalidNamespace, "CIM_ERR_INVALID_NAMESPACE"},
           Case{4, Status::InvalidParameter, "CIM_ERR_INVALID_PARAMETER"},
           Case{5, Status::InvalidClass, "CIM_ERR_INVALID_CLASS"},
           Case{6, Status::NotFound, "CIM_ERR_NOT_FOUND"},
           Case{7, Status::NotSupported, "CIM_ERR_NOT_SUPPORTED"},
           Case{12, Status::NoSuchProperty, "CIM_ERR_NO_SUCH_PROPERTY"},
           Case{13, Status::TypeMismatch, "CIM_ERR_TYPE_MISMATCH"},
           Case{16, Status::MethodNotAvailable, "CIM_ERR_METHOD_NOT_AVAILABLE"},
           Case{17, Status::MethodNotFound, "CIM_ERR_METHOD_NOT_FOUND"},
           Case{21, Status::InvalidEnumerationContext, "CIM_ERR_INVALID_ENUMERATION_CONTEXT"},
           Case{22, Status::InvalidOperationTimeout, "CIM_ERR_INVALID_OPERATION_TIMEOUT"},
           Case{25, Status::FilteredEnumerationNotSupported,
                "CIM_ERR_FILTERED_ENUMERATION_NOT_SUPPORTED"},
           Case{26, Status::ContinuationOnErrorNotSupported,
                "CIM_ERR_CONTINUATION_ON_ERROR_NOT_SUPPORTED"},
           Case{27, Status::ServerLimitsExceeded, "CIM_ERR_SERVER_LIMITS_EXCEEDED"},
       }) {
    EXPECT_EQ(static_cast<unsigned>(one.status), one.number);
    EXPECT_EQ(getStatusName(one.status), one.name);
  }
}

}  // namespace
