#include <future>
#include <gmock/gmock.h>
#include <string>

#include "Os/Windows/HandleOwners.h"
#include "platform/Windows/Handle.h"
#include "tests/Os/Windows/NamedEvent.h"
#include "tests/support/Programs.h"
#include "tests/support/Windows/ImportPatch.h"
#include "tests/support/Windows/OpenHandles.h"

namespace {

using os::findOwners;
using os::HandleOwner;
using os::HandleOwners;
using test::ImportPatch;
using testing::IsEmpty;

void expectThisAlone(const HandleOwners& owners) {
  ASSERT_EQ(owners.known.size(), 1U);
  EXPECT_EQ(owners.known[0].toString(),
            "this program, process " + std::to_string(GetCurrentProcessId()));
}

// Another process that has the semaphore open while one lives.
class Holder {
 public:
  Holder() { EXPECT_TRUE(m_ready.await()); }
  Holder(const Holder&) = delete;
  Holder& operator=(const Holder&) = delete;
  ~Holder() {
    m_go.set();
    EXPECT_EQ(m_program.get().exitStatus, 0);
  }

 private:
  test::NamedEvent m_ready{"owners-ready"};
  test::NamedEvent m_go{"owners-go"};
  std::future<test::ProgramResult> m_program = std::async(std::launch::async, [this] {
    return test::runProgram(test::programBeside("semaphore_holder"), {m_ready.name(), m_go.name()});
  });
};

// The system, as it answers where it keeps a process from the user, or has none of the number.
template <DWORD error>
HANDLE WINAPI openNone(DWORD /*access*/, BOOL /*isInherited*/, DWORD /*process*/) {
  SetLastError(error);
  return nullptr;
}

TEST(HandleOwners, AreThisProcessAloneOfWhatNobodyElseHasOpen) {
  const platform::Handle event(test::makeEvent());
  expectThisAlone(findOwners(event.get()));
}

TEST(HandleOwners, AreNoneOfWhatIsNoHandle) {
  const HandleOwners owners = findOwners(nullptr);
  EXPECT_THAT(owners.known, IsEmpty());
  EXPECT_FALSE(owners.areAll);
}

class OwnersOfSemaphore : public testing::Test {
 protected:
  const platform::Handle m_semaphore{CreateSemaphoreA(nullptr, 1, 1, "Global\\RavlApplySemaphore")};
};

TEST_F(OwnersOfSemaphore, AreTheOtherProcessesThatHaveItOpen) {
  {
    const Holder holder;
    const HandleOwners owners = findOwners(m_semaphore.get());
    ASSERT_EQ(owners.known.size(), 2U);
    EXPECT_EQ(owners.known[0].program, "semaphore_holder.exe");
    EXPECT_EQ(owners.known[0].toString(),
              "semaphore_holder.exe, process " + std::to_string(owners.known[0].process));
    EXPECT_EQ(owners.known[1].program, "this program");
    EXPECT_TRUE(owners.areAll);
  }
  expectThisAlone(findOwners(m_semaphore.get()));
}

TEST_F(OwnersOfSemaphore, AreNotAllWhereAProcessIsKeptFromTheUser) {
  const Holder holder;
  const ImportPatch patch("OrvexCimCore.dll", "OpenProcess", &openNone<ERROR_ACCESS_DENIED>);
  const HandleOwners owners = findOwners(m_semaphore.get());
  expectThisAlone(owners);
  EXPECT_FALSE(owners.areAll);
}

TEST_F(OwnersOfSemaphore, AreAllWhereAProcessHasEndedMeanwhile) {
  const Holder holder;
  const ImportPatch patch("OrvexCimCore.dll", "OpenProcess", &openNone<ERROR_INVALID_PARAMETER>);
  const HandleOwners owners = findOwners(m_semaphore.get());
  expectThisAlone(owners);
  EXPECT_TRUE(owners.areAll);
}

TEST(HandleOwners, AreNamedByTheirNumberWhereThatIsAllThatIsKnown) {
  EXPECT_EQ((HandleOwner{"", 12}.toString()), "process 12");
}

}  // namespace
