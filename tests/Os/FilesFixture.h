// A directory of files, and what the tests expect of the ways to them.

#ifndef ORVEX_TESTS_OS_FILESFIXTURE_H_
#define ORVEX_TESTS_OS_FILESFIXTURE_H_

#include <filesystem>
#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "Os/Files.h"
#include "Utils/Exception.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Throws.h"

namespace test {

class FilesFixture : public testing::Test {
 protected:
  // Make something at a path of the test's directory and return the path.
  std::string file(const std::string& name, const std::string& content) {
    return m_directory.write(name, content).string();
  }
  [[nodiscard]] std::string path(const std::string& name) const {
    return (m_directory.path() / name).string();
  }
  std::string folder(const std::string& name) {
    std::filesystem::create_directory(path(name));
    return path(name);
  }
  std::string sparseFile(const std::string& name, std::uintmax_t size) {
    const std::string made = file(name, "");
    std::filesystem::resize_file(made, size);
    return made;
  }

  static std::string read(const std::string& path, std::int32_t count) {
    std::vector<std::uint8_t> buffer(static_cast<std::size_t>(count) + 1, '#');
    const std::int32_t got = os::readFile(path, buffer.data(), count);
    EXPECT_EQ(buffer.at(static_cast<std::size_t>(got)), '#') << "wrote behind what it read";
    return {buffer.begin(), buffer.begin() + got};
  }

  static void expectNotOpened(const std::string& path) {
    EXPECT_THAT([&] { static_cast<void>(os::getFileSize(path)); },
                ThrowsExactly<utils::Exception>("Could not open the file '" + path + "'"));
    EXPECT_EQ(read(path, 16), "") << path;
  }
  static void expectDirectory(const std::string& path) {
    EXPECT_THAT(
        [&] { static_cast<void>(os::getFileSize(path)); },
        ThrowsExactly<utils::Exception>("The specyfied URI '" + path + "' points to a directory "));
    EXPECT_EQ(read(path, 16), "");
    EXPECT_TRUE(os::isThisADir(path)) << path;
  }

  TempDirectory m_directory;
};

}  // namespace test

#endif  // ORVEX_TESTS_OS_FILESFIXTURE_H_
