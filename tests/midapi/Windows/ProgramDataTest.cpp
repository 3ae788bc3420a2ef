#include <gmock/gmock.h>
#include <system_error>

#include "midapi/Windows/ProgramData.h"
#include "tests/midapi/Windows/ServiceData.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Windows/DirectoryLink.h"

namespace {

using ma::isInProgramData;
using ma::objectionTo;
using test::OwnProgramData;
using test::PlayedOwner;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

class ProgramData : public testing::Test {
 protected:
  std::filesystem::path folder(const char* name) const {
    std::filesystem::path path = (m_directory.path() / name).make_preferred();
    std::filesystem::create_directories(path);
    return path;
  }

  test::TempDirectory m_directory;
  const OwnProgramData m_own{m_directory.path().native()};
};

TEST_F(ProgramData, IsWhereTheSystemSays) {
  EXPECT_EQ(ma::programData(), m_directory.path());
  const OwnProgramData none(L"");
  EXPECT_EQ(ma::programData(), L"C:\\ProgramData");
}

TEST_F(ProgramData, HoldsWhatIsInIt) {
  for (const wchar_t* base :
       {L"C:\\Data", L"C:\\Data\\", L"C:/Data/", L"c:\\DATA", L"C:\\x\\..\\Data"}) {
    const OwnProgramData own(base);
    EXPECT_TRUE(isInProgramData(L"C:\\Data\\Orvex")) << std::filesystem::path(base);
    EXPECT_TRUE(isInProgramData(L"C:\\data\\orvex\\adapters")) << std::filesystem::path(base);
    for (const wchar_t* other :
         {L"C:\\Data", L"C:\\Data2\\Orvex", L"C:\\Dat\\Orvex", L"D:\\Data\\Orvex"}) {
      EXPECT_FALSE(isInProgramData(other)) << std::filesystem::path(other);
    }
  }
}

TEST_F(ProgramData, TakesFoldersOfTheUserTheSystemAndTheAdministrators) {
  const auto path = folder("Orvex/adapters");
  EXPECT_EQ(objectionTo(path), "");
  for (const wchar_t* trusted : {L"S-1-5-18", L"S-1-5-32-544"}) {
    const PlayedOwner owner(L"Orvex", trusted);
    EXPECT_EQ(objectionTo(path), "");
  }
}

TEST_F(ProgramData, TakesNoFolderOfAnybodyElse) {
  const auto path = folder("Orvex/adapters");
  const std::string shown = path.parent_path().string();
  const PlayedOwner owner(L"Orvex", test::kStranger);
  EXPECT_EQ(objectionTo(path), objectionTo(path.parent_path()));
  EXPECT_THAT(objectionTo(path),
              AllOf(StartsWith(shown + " belongs to S-1-5-21-1-2-3-4567, who can change"),
                    HasSubstr("takeown /f \"" + shown + "\" /a /r"), HasSubstr("ORVEX_ADAPTERS")));
}

TEST_F(ProgramData, NamesUsersAsPeopleKnowThem) {
  const auto path = folder("Orvex");
  const PlayedOwner owner(L"Orvex", L"S-1-5-19");
  EXPECT_THAT(objectionTo(path), HasSubstr("\\LOCAL SERVICE, who can change"));
}

TEST_F(ProgramData, TakesNoLinkToAnotherPlace) {
  const auto link = m_directory.path() / "Orvex";
  const test::DirectoryLink made(link, folder("elsewhere/adapters").parent_path());
  EXPECT_THAT(objectionTo(link / "adapters"),
              AllOf(StartsWith(link.string() + " is a link to another place"),
                    HasSubstr("rmdir \"" + link.string() + "\"")));
}

TEST_F(ProgramData, IsKnownByItsShortName) {
  const auto base = folder("A name that is long");
  const auto path = folder("A name that is long/Orvex/adapters");
  wchar_t buffer[MAX_PATH] = {};
  GetShortPathNameW(base.c_str(), buffer, MAX_PATH);
  const std::filesystem::path shortBase(buffer);
  if (shortBase.empty() || shortBase == base) {
    GTEST_SKIP() << "the file system of the test has no short names";
  }
  const PlayedOwner owner(L"Orvex", test::kStranger);
  const OwnProgramData own(base.native());
  EXPECT_TRUE(isInProgramData(shortBase / "Orvex"));
  EXPECT_FALSE(isInProgramData(shortBase));
  EXPECT_EQ(objectionTo(shortBase / "Orvex" / "adapters"), objectionTo(path));
  EXPECT_THAT(objectionTo(path), HasSubstr(" belongs to S-1-5-21-1-2-3-4567"));
  const OwnProgramData shortOwn(shortBase.native());
  EXPECT_THAT(objectionTo(path), HasSubstr(" belongs to S-1-5-21-1-2-3-4567"));
}

TEST_F(ProgramData, IsKnownThroughLinksFromElsewhere) {
  const auto path = folder("Orvex/adapters");
  const test::TempDirectory elsewhere;
  const test::DirectoryLink all(elsewhere.path() / "All Users", m_directory.path());
  const test::DirectoryLink one(elsewhere.path() / "one", path.parent_path());
  const PlayedOwner owner(L"Orvex", test::kStranger);
  for (const char* const spelling : {"All Users/Orvex/adapters", "one/adapters", "one/none"}) {
    const auto other = (elsewhere.path() / spelling).make_preferred();
    EXPECT_TRUE(isInProgramData(other)) << spelling;
    EXPECT_EQ(objectionTo(other), objectionTo(path)) << spelling;
  }
  EXPECT_FALSE(isInProgramData(elsewhere.path() / "All Users"));
  EXPECT_FALSE(isInProgramData(elsewhere.path() / "two"));
}

TEST_F(ProgramData, SeesItsLinksUnderAnotherName) {
  const auto link = m_directory.path() / "Orvex";
  const test::DirectoryLink made(link, folder("elsewhere/adapters").parent_path());
  const test::TempDirectory elsewhere;
  const test::DirectoryLink all(elsewhere.path() / "all", m_directory.path());
  EXPECT_THAT(objectionTo(elsewhere.path() / "all" / "Orvex" / "adapters"),
              StartsWith(link.string() + " is a link to another place"));
}

TEST_F(ProgramData, TakesFoldersThatAreMissing) {
  EXPECT_EQ(objectionTo(m_directory.path() / "Orvex" / "adapters"), "");
}

TEST_F(ProgramData, IsNotAskedAboutFoldersElsewhere) {
  const auto path = folder("Orvex");
  const PlayedOwner owner(L"Orvex", test::kStranger);
  const OwnProgramData other(L"C:\\quorvel-none");
  EXPECT_EQ(objectionTo(path), "");
}

TEST_F(ProgramData, FailsWhereTheOwnerCannotBeTold) {
  const auto path = folder("Orvex");
  const PlayedOwner owner(L"Orvex", L"");
  EXPECT_THROW(static_cast<void>(objectionTo(path)), std::system_error);
}

}  // namespace
