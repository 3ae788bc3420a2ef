#include <cerrno>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <utility>

#include "platform/Posix/Descriptor.h"

namespace {

using platform::Descriptor;

int openNull() {
  return open("/dev/null", O_RDONLY | O_CLOEXEC);
}

bool isOpen(int number) {
  return fcntl(number, F_GETFD) >= 0;
}

TEST(Descriptor, IsNoneByDefaultAndForAFailedCall) {
  EXPECT_FALSE(Descriptor().isOpen());
  EXPECT_FALSE(Descriptor(-1).isOpen());
}

TEST(Descriptor, ClosesWhatItOwns) {
  const int number = openNull();
  {
    const Descriptor owner(number);
    EXPECT_TRUE(owner.isOpen());
    EXPECT_EQ(owner.get(), number);
    EXPECT_TRUE(isOpen(number));
  }

  EXPECT_FALSE(isOpen(number));
}

TEST(Descriptor, HasOneOwnerAfterAMove) {
  const int number = openNull();
  Descriptor first(number);
  {
    Descriptor second(std::move(first));
    EXPECT_FALSE(first.isOpen());  // NOLINT(bugprone-use-after-move): what a move leaves
    EXPECT_EQ(second.get(), number);
    first = std::move(second);
  }

  EXPECT_TRUE(isOpen(number));
  EXPECT_EQ(first.get(), number);
}

TEST(Descriptor, IsClosedOnce) {
  const int number = openNull();
  Descriptor owner(number);

  EXPECT_TRUE(owner.close());
  EXPECT_FALSE(isOpen(number));
  EXPECT_FALSE(owner.isOpen());
}

TEST(Descriptor, TellsOfOneThatCannotBeClosed) {
  const int number = openNull();
  Descriptor owner(number);
  ::close(number);

  EXPECT_FALSE(owner.close());
  EXPECT_EQ(errno, EBADF);
  EXPECT_FALSE(owner.isOpen());
}

}  // namespace
