// The entry of the module in a system that has no more mutexes to give.

#include <gmock/gmock.h>
#include <windows.h>

#include "Utils/Exception.h"
#include "agent/MainDllEntry.h"
#include "tests/support/Throws.h"
#include "tests/support/Windows/ImportPatch.h"

namespace {

using test::ThrowsExactly;
using testing::HasSubstr;

HANDLE WINAPI refuseMutex(SECURITY_ATTRIBUTES*, BOOL, LPCSTR) {
  SetLastError(ERROR_NOT_ENOUGH_MEMORY);
  return nullptr;
}

TEST(WindowsModuleEntry, BuildsTheAgentAgainAfterAFailure) {
  {
    const test::ImportPatch patch("OrvexCimCore.dll", "CreateMutexA", &refuseMutex);
    EXPECT_THAT([] { DllMain(nullptr, agent::kProcessAttach, nullptr); },
                ThrowsExactly<utils::Exception>(HasSubstr("Could not create mutex ")));
  }

  EXPECT_EQ(RegisterSoftwareUpdateAgent()->getClassNames().size(), 10u);
}

}  // namespace
