#include <gmock/gmock.h>
#include <utility>
#include <windows.h>

#include "platform/Windows/Handle.h"
#include "tests/support/Windows/OpenHandles.h"

namespace {

using platform::Handle;
using test::isOpen;
using test::makeEvent;

TEST(Handle, ClosesWhatItOwns) {
  const HANDLE event = makeEvent();
  {
    const Handle owner(event);
    EXPECT_TRUE(owner.isOpen());
    EXPECT_EQ(owner.get(), event);
    EXPECT_TRUE(isOpen(event));
  }

  EXPECT_FALSE(isOpen(event));
}

TEST(Handle, HasOneOwnerAfterAMove) {
  const HANDLE event = makeEvent();
  Handle first(event);
  {
    Handle second(std::move(first));
    EXPECT_FALSE(first.isOpen());
    EXPECT_EQ(second.get(), event);
    first = std::move(second);
  }

  EXPECT_TRUE(isOpen(event));
  EXPECT_EQ(first.get(), event);
}

TEST(Handle, IsClosedOnce) {
  const HANDLE event = makeEvent();
  Handle owner(event);

  EXPECT_TRUE(owner.close());
  EXPECT_FALSE(isOpen(event));
  EXPECT_FALSE(owner.isOpen());
}

TEST(Handle, TellsOfOneThatCannotBeClosed) {
  const HANDLE event = makeEvent();
  Handle owner(event);
  CloseHandle(event);

  EXPECT_FALSE(owner.close());
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
}

}  // namespace
