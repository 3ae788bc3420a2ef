#include <gmock/gmock.h>
#include <new>
#include <stdexcept>

#include "Utils/Exception.h"
#include "wbem/Status.h"

namespace {

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

}  // namespace
