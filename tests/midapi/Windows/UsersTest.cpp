#include <gmock/gmock.h>
#include <windows.h>

#include "midapi/Windows/Users.h"

namespace {

using ma::identifierOf;
using ma::identifierOfProcess;
using ma::nameOf;
using testing::EndsWith;
using testing::StartsWith;

TEST(Users, HaveIdentifiers) {
  BYTE sid[SECURITY_MAX_SID_SIZE];
  DWORD size = sizeof sid;
  ASSERT_NE(CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, sid, &size), FALSE);
  EXPECT_EQ(identifierOf(sid), L"S-1-5-32-544");
}

TEST(Users, AreThoseOfProcesses) {
  EXPECT_THAT(identifierOfProcess(), StartsWith(L"S-1-5-"));
  EXPECT_EQ(identifierOfProcess(), identifierOfProcess());
}

TEST(Users, HaveNamesWhereTheSystemKnowsThem) {
  EXPECT_THAT(nameOf(L"S-1-5-18"), EndsWith(L"\\SYSTEM"));
  for (const wchar_t* unknown : {L"S-1-5-21-1-2-3-4567", L"none"}) {
    EXPECT_EQ(nameOf(unknown), unknown);
  }
}

}  // namespace
