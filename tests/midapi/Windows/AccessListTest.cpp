#include <cstddef>
#include <gmock/gmock.h>
#include <string>
#include <vector>
#include <windows.h>

// Needs the header above.
#include <sddl.h>

#include "midapi/Windows/AccessList.h"
#include "tests/support/TempDirectory.h"

namespace {

namespace fs = std::filesystem;
using ma::copyAccessList;
using ma::PrivateFolderAttributes;
using testing::HasSubstr;
using testing::StartsWith;

std::string textOf(PSECURITY_DESCRIPTOR descriptor) {
  char* text = nullptr;
  EXPECT_NE(ConvertSecurityDescriptorToStringSecurityDescriptorA(
                descriptor, SDDL_REVISION_1, DACL_SECURITY_INFORMATION, &text, nullptr),
            FALSE);
  const std::string result = text != nullptr ? text : "";
  LocalFree(text);
  return result;
}

std::string listOf(const fs::path& path) {
  DWORD size = 0;
  GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
  std::vector<std::max_align_t> memory(size / sizeof(std::max_align_t) + 1);
  EXPECT_NE(GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, memory.data(), size, &size),
            FALSE);
  return textOf(memory.data());
}

void makePrivate(const fs::path& path) {
  const PrivateFolderAttributes attributes;
  const auto* const list = static_cast<const SECURITY_ATTRIBUTES*>(attributes.get());
  ASSERT_NE(SetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, list->lpSecurityDescriptor),
            FALSE);
}

TEST(AccessList, OfAPrivateFolderLetsUsersOnlyRead) {
  const PrivateFolderAttributes attributes;
  const auto* const list = static_cast<const SECURITY_ATTRIBUTES*>(attributes.get());
  ASSERT_EQ(list->nLength, sizeof(SECURITY_ATTRIBUTES));
  EXPECT_EQ(list->bInheritHandle, FALSE);
  const std::string text = textOf(list->lpSecurityDescriptor);

  EXPECT_THAT(text, StartsWith("D:P"));
  EXPECT_THAT(text, HasSubstr("(A;OICI;FA;;;SY)"));
  EXPECT_THAT(text, HasSubstr("(A;OICI;FA;;;BA)"));
  EXPECT_THAT(text,
              testing::AnyOf(HasSubstr("(A;OICI;0x1200a9;;;BU)"), HasSubstr("(A;OICI;FRFX;;;BU)")));
  EXPECT_THAT(text, testing::Not(HasSubstr(";;;WD)")));
}

TEST(AccessList, IsCopiedFromFileToFile) {
  const test::TempDirectory directory;
  const fs::path from = directory.write("from", std::string());
  const fs::path to = directory.write("to", std::string());
  makePrivate(from);
  ASSERT_NE(listOf(from), listOf(to));

  EXPECT_EQ(copyAccessList(from, to), 0U);
  EXPECT_EQ(listOf(to), listOf(from));
}

TEST(AccessList, StaysWhereThereIsNoOther) {
  const test::TempDirectory directory;
  const fs::path file = directory.write("file", std::string());
  const std::string before = listOf(file);

  EXPECT_EQ(copyAccessList(directory.path() / "none", file), 0U);
  EXPECT_EQ(copyAccessList(directory.path() / "none" / "none", file), 0U);
  EXPECT_EQ(listOf(file), before);
}

TEST(AccessList, IsNotCopiedToAFileThatIsMissing) {
  const test::TempDirectory directory;
  EXPECT_EQ(copyAccessList(directory.write("file", std::string()), directory.path() / "none"),
            DWORD{ERROR_FILE_NOT_FOUND});
}

}  // namespace
