#include <future>
#include <gmock/gmock.h>
#include <string>

#include "Os/Windows/HandleOwners.h"
#include "platform/Windows/Handle.h"
#include "tests/Os/Windows/NamedEvent.h"
#include "tests/support/Programs.h"
#include "tests/support/Windows/OpenHandles.h"

namespace {

using os::findOwners;
using os::HandleOwner;
using testing::IsEmpty;

void expectThisAlone(const std::vector<HandleOwner>& owners) {
  ASSERT_EQ(owners.size(), 1U);
  EXPECT_EQ(owners[0].toString(), "this program, process " + std::to_string(GetCurrentProcessId()));
}

TEST(HandleOwners, AreThisProcessAloneOfWhatNobodyElseHasOpen) {
  const platform::Handle event(test::makeEvent());
  expectThisAlone(findOwners(event.get()));
}

TEST(HandleOwners, AreNoneOfWhatIsNoHandle) {
  EXPECT_THAT(findOwners(nullptr), IsEmpty());
}

TEST(HandleOwners, AreTheOtherProcessesThatHaveItOpen) {
  const platform::Handle semaphore(CreateSemaphoreA(nullptr, 1, 1, "Global\\RavlApplySemaphore"));
  test::NamedEvent ready("owners-ready");
  test::NamedEvent go("owners-go");
  auto holder = std::async(std::launch::async, [&] {
    return test::runProgram(test::programBeside("semaphore_holder"), {ready.name(), go.name()});
  });
  ASSERT_TRUE(ready.await());

  const std::vector<HandleOwner> owners = findOwners(semaphore.get());
  go.set();
  EXPECT_EQ(holder.get().exitStatus, 0);
  ASSERT_EQ(owners.size(), 2U);
  EXPECT_EQ(owners[0].program, "semaphore_holder.exe");
  EXPECT_EQ(owners[0].toString(),
            "semaphore_holder.exe, process " + std::to_string(owners[0].process));
  EXPECT_EQ(owners[1].program, "this program");
  expectThisAlone(findOwners(semaphore.get()));
}

TEST(HandleOwners, AreNamedByTheirNumberWhereThatIsAllThatIsKnown) {
  EXPECT_EQ((HandleOwner{"", 12}.toString()), "process 12");
}

}  // namespace
