#include <future>
#include <gmock/gmock.h>
#include <string>

#include "Os/Windows/HandleOwners.h"
#include "platform/Windows/Handle.h"
#include "tests/Os/Windows/NamedEvent.h"
#include "tests/support/Programs.h"
#include "tests/support/Windows/OpenHandles.h"

namespace {

using os::findOtherOwners;
using os::HandleOwner;
using testing::IsEmpty;

TEST(HandleOwners, AreNoneOfWhatNobodyElseHasOpen) {
  const platform::Handle event(test::makeEvent());
  EXPECT_THAT(findOtherOwners(event.get()), IsEmpty());
  EXPECT_THAT(findOtherOwners(nullptr), IsEmpty());
}

TEST(HandleOwners, AreTheOtherProcessesThatHaveItOpen) {
  const platform::Handle semaphore(CreateSemaphoreA(nullptr, 1, 1, "Global\\RavlApplySemaphore"));
  test::NamedEvent ready("owners-ready");
  test::NamedEvent go("owners-go");
  auto holder = std::async(std::launch::async, [&] {
    return test::runProgram(test::programBeside("semaphore_holder"), {ready.name(), go.name()});
  });
  ASSERT_TRUE(ready.await());

  const std::vector<HandleOwner> owners = findOtherOwners(semaphore.get());
  go.set();
  EXPECT_EQ(holder.get().exitStatus, 0);
  ASSERT_EQ(owners.size(), 1U);
  EXPECT_EQ(owners[0].program, "semaphore_holder.exe");
  EXPECT_EQ(owners[0].toString(),
            "semaphore_holder.exe, process " + std::to_string(owners[0].process));
  EXPECT_THAT(findOtherOwners(semaphore.get()), IsEmpty());
}

TEST(HandleOwners, AreNamedByTheirNumberWhereThatIsAllThatIsKnown) {
  EXPECT_EQ((HandleOwner{"", 12}.toString()), "process 12");
}

}  // namespace
