// A link to a directory, of whatever kind the system lets a test make.

#ifndef ORVEX_TESTS_SUPPORT_WINDOWS_DIRECTORYLINK_H_
#define ORVEX_TESTS_SUPPORT_WINDOWS_DIRECTORYLINK_H_

#include <filesystem>

namespace test {

// Gone at the end of its scope, if not before: what removes the directory that it is in may follow
// it.
class DirectoryLink {
 public:
  // Throws std::runtime_error where none can be made.
  DirectoryLink(std::filesystem::path link, const std::filesystem::path& target);
  DirectoryLink(const DirectoryLink&) = delete;
  DirectoryLink& operator=(const DirectoryLink&) = delete;
  ~DirectoryLink();

 private:
  const std::filesystem::path m_link;
};

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_WINDOWS_DIRECTORYLINK_H_
