#include <gmock/gmock.h>

#include "cimxml/StatusCode.h"

namespace {

using cimxml::StatusCode;

TEST(StatusCode, HasTheNumberAndTheNameOfTheStandard) {
  struct Case {
    unsigned number;
    StatusCode code;
    const char* name;
  };
  for (const Case& one : {
           Case{1, StatusCode::Failed, "CIM_ERR_FAILED"},
           Case{2, StatusCode::AccessDenied, "CIM_ERR_ACCESS_DENIED"},
           Case{3, StatusCode::InvalidNamespace, "CIM_ERR_INVALID_NAMESPACE"},
           Case{4, StatusCode::InvalidParameter, "CIM_ERR_INVALID_PARAMETER"},
           Case{5, StatusCode::InvalidClass, "CIM_ERR_INVALID_CLASS"},
           Case{6, StatusCode::NotFound, "CIM_ERR_NOT_FOUND"},
           Case{7, StatusCode::NotSupported, "CIM_ERR_NOT_SUPPORTED"},
           Case{8, StatusCode::ClassHasChildren, "CIM_ERR_CLASS_HAS_CHILDREN"},
           Case{9, StatusCode::ClassHasInstances, "CIM_ERR_CLASS_HAS_INSTANCES"},
           Case{10, StatusCode::InvalidSuperclass, "CIM_ERR_INVALID_SUPERCLASS"},
           Case{11, StatusCode::AlreadyExists, "CIM_ERR_ALREADY_EXISTS"},
           Case{12, StatusCode::NoSuchProperty, "CIM_ERR_NO_SUCH_PROPERTY"},
           Case{13, StatusCode::TypeMismatch, "CIM_ERR_TYPE_MISMATCH"},
           Case{14, StatusCode::QueryLanguageNotSupported, "CIM_ERR_QUERY_LANGUAGE_NOT_SUPPORTED"},
           Case{15, StatusCode::InvalidQuery, "CIM_ERR_INVALID_QUERY"},
           Case{16, StatusCode::MethodNotAvailable, "CIM_ERR_METHOD_NOT_AVAILABLE"},
           Case{17, StatusCode::MethodNotFound, "CIM_ERR_METHOD_NOT_FOUND"},
           Case{20, StatusCode::NamespaceNotEmpty, "CIM_ERR_NAMESPACE_NOT_EMPTY"},
           Case{21, StatusCode::InvalidEnumerationContext, "CIM_ERR_INVALID_ENUMERATION_CONTEXT"},
           Case{22, StatusCode::InvalidOperationTimeout, "CIM_ERR_INVALID_OPERATION_TIMEOUT"},
           Case{23, StatusCode::PullHasBeenAbandoned, "CIM_ERR_PULL_HAS_BEEN_ABANDONED"},
           Case{24, StatusCode::PullCannotBeAbandoned, "CIM_ERR_PULL_CANNOT_BE_ABANDONED"},
           Case{25, StatusCode::FilteredEnumerationNotSupported,
                "CIM_ERR_FILTERED_ENUMERATION_NOT_SUPPORTED"},
           Case{26, StatusCode::ContinuationOnErrorNotSupported,
                "CIM_ERR_CONTINUATION_ON_ERROR_NOT_SUPPORTED"},
           Case{27, StatusCode::ServerLimitsExceeded, "CIM_ERR_SERVER_LIMITS_EXCEEDED"},
           Case{28, StatusCode::ServerIsShuttingDown, "CIM_ERR_SERVER_IS_SHUTTING_DOWN"},
           Case{29, StatusCode::QueryFeatureNotSupported, "CIM_ERR_QUERY_FEATURE_NOT_SUPPORTED"},
       }) {
    EXPECT_EQ(static_cast<unsigned>(one.code), one.number);
    EXPECT_EQ(cimxml::getStatusName(one.code), one.name);
  }
}

TEST(StatusCode, HasNoNameThatTheStandardDoesNotGive) {
  for (const unsigned number : {0U, 18U, 19U, 30U, 1000U}) {
    EXPECT_EQ(cimxml::getStatusName(static_cast<StatusCode>(number)), "") << number;
  }
}

}  // namespace
