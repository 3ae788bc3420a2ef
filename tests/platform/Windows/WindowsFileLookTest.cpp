// Devices, files that are in use, and paths that are too long for std::filesystem.

#include <gtest/gtest.h>
#include <string>
#include <windows.h>

#include "platform/FileLook.h"
#include "platform/Windows/Handle.h"
#include "platform/Windows/SystemPath.h"
#include "tests/support/TempDirectory.h"

namespace {

using platform::FileKind;
using platform::lookAtFile;

TEST(WindowsFileLook, TellsDevices) {
  EXPECT_EQ(lookAtFile("NUL").kind, FileKind::Other);
}

TEST(WindowsFileLook, MindsNobodyWhoHasTheFileOpen) {
  const test::TempDirectory directory;
  const auto file = directory.write("file", std::string("12345"));
  const platform::Handle kept(
      CreateFileW(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
  ASSERT_NE(kept.get(), INVALID_HANDLE_VALUE);
  EXPECT_EQ(lookAtFile(file).size, 5U);
}

TEST(WindowsFileLook, TakesPathsOfAnyLength) {
  const test::TempDirectory directory;
  const auto folder = directory.path() / std::string(150, 'a');
  const auto file = folder / std::string(150, 'b');
  std::filesystem::create_directory(folder);
  const auto native = platform::toSystemPath(file);
  ASSERT_NE(CopyFileW(directory.write("file", std::string("12345")).c_str(), native.c_str(), TRUE),
            FALSE);
  EXPECT_EQ(lookAtFile(file).kind, FileKind::Regular);
  EXPECT_EQ(lookAtFile(file).size, 5U);
  EXPECT_TRUE(platform::areOneFile(file, folder / ".." / folder.filename() / file.filename()));
  DeleteFileW(native.c_str());
}

}  // namespace
