// Paths with the roots that only Windows has.

#include <gtest/gtest.h>
#include <string>

#include "platform/Paths.h"
#include "platform/Texts.h"
#include "platform/Windows/SystemPath.h"

namespace {

std::wstring absolute(const std::wstring& path) {
  std::error_code error;
  return platform::makeAbsolute(path, error).native();
}

std::wstring normal(const std::wstring& path) {
  std::error_code error;
  return platform::makeNormal(path, error).native();
}

std::wstring forSystem(const std::wstring& path) {
  return platform::toSystemPath(path).native();
}

TEST(WindowsPaths, KeepTheServerThatTheyBeginWith) {
  for (const wchar_t* path : {L"\\\\srv\\share\\new.rom", L"//srv/share/new.rom",
                              L"\\\\srv\\share\\.\\old\\..\\new.rom"}) {
    EXPECT_EQ(absolute(path), L"\\\\srv\\share\\new.rom");
    EXPECT_EQ(normal(path), L"\\\\srv\\share\\new.rom");
  }
}

TEST(WindowsPaths, KeepTheServerWithSlashesBetweenTheNames) {
  EXPECT_EQ(platform::toGenericText(L"\\\\srv\\share\\new.rom"), "//srv/share/new.rom");
}

TEST(WindowsPaths, NameNoOtherFileWithoutTheSignOfTheSystem) {
  EXPECT_EQ(absolute(L"\\\\?\\C:\\new.rom"), L"C:\\new.rom");
  EXPECT_EQ(absolute(L"\\\\?\\UNC\\srv\\share\\new.rom"), L"\\\\srv\\share\\new.rom");
  EXPECT_EQ(absolute(L"\\\\?\\Volume{1}\\new.rom"), L"\\\\?\\Volume{1}\\new.rom");
}

TEST(WindowsPaths, AreAbsoluteWithADriveOrAServer) {
  for (const wchar_t* path : {L"C:\\a", L"C:/a", L"\\\\srv\\share", L"//srv/share"}) {
    EXPECT_TRUE(platform::isAbsolute(path)) << std::filesystem::path(path);
  }
  for (const wchar_t* path : {L"C:", L"C:a", L"\\a", L"/a", L"a\\b"}) {
    EXPECT_FALSE(platform::isAbsolute(path)) << std::filesystem::path(path);
  }
}

TEST(WindowsPaths, AreGivenToTheSystemAsTheyAreWhileTheyAreShort) {
  for (const wchar_t* path : {L"C:\\a", L"a", L"NUL", L"\\\\srv\\share\\a", L"\\\\?\\C:\\a"}) {
    EXPECT_EQ(forSystem(path), path);
  }
}

TEST(WindowsPaths, AreGivenToTheSystemBehindItsSignWhereTheyAreLong) {
  const std::wstring name(200, L'x');
  const std::wstring names = name + L"\\" + name;
  const std::wstring sign = L"\\\\?\\";

  EXPECT_EQ(forSystem(L"C:/a/../" + names), sign + L"C:\\" + names);
  EXPECT_EQ(forSystem(L"\\\\srv\\share\\" + names), sign + L"UNC\\srv\\share\\" + names);
  EXPECT_EQ(forSystem(sign + L"C:\\" + names), sign + L"C:\\" + names);
  EXPECT_EQ(forSystem(names), sign + absolute(names));
}

TEST(WindowsPaths, MayBeAsLongAsTheSystemTakesThem) {
  std::wstring path = L"C:";
  while (path.size() < 30'000) {
    path += L"\\" + std::wstring(200, L'x');
  }
  EXPECT_EQ(absolute(path), path);
}

}  // namespace
