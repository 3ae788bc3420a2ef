// The directory that relative paths begin at, as long as the object lives. One thread.

#ifndef ORVEX_TESTS_SUPPORT_CURRENTDIRECTORY_H_
#define ORVEX_TESTS_SUPPORT_CURRENTDIRECTORY_H_

#include <filesystem>

namespace test {

// Throws std::filesystem::filesystem_error when it cannot be entered.
class CurrentDirectory {
 public:
  explicit CurrentDirectory(const std::filesystem::path& directory) {
    std::filesystem::current_path(directory);
  }
  CurrentDirectory(const CurrentDirectory&) = delete;
  CurrentDirectory& operator=(const CurrentDirectory&) = delete;
  ~CurrentDirectory() {
    std::error_code ignored;
    std::filesystem::current_path(m_previous, ignored);
  }

 private:
  const std::filesystem::path m_previous = std::filesystem::current_path();
};

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_CURRENTDIRECTORY_H_
