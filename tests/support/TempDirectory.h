// A directory of a test's own, removed with its content when the object dies.

#ifndef ORVEX_TESTS_SUPPORT_TEMPDIRECTORY_H_
#define ORVEX_TESTS_SUPPORT_TEMPDIRECTORY_H_

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace test {

// Throws std::runtime_error or std::filesystem::filesystem_error where something fails.
class TempDirectory {
 public:
  TempDirectory();
  TempDirectory(const TempDirectory&) = delete;
  TempDirectory& operator=(const TempDirectory&) = delete;
  ~TempDirectory();

  [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

  // Writes a file, with the folders on the way to it, and returns its path.
  std::filesystem::path write(const std::filesystem::path& name,
                              const std::vector<std::uint8_t>& content) const;
  std::filesystem::path write(const std::filesystem::path& name, const std::string& content) const;
  // The same for a file that its owner alone may read and write.
  std::filesystem::path writePrivate(const std::filesystem::path& name,
                                     const std::string& content) const;

 private:
  std::filesystem::path m_path;
};

// Reads a whole file.
[[nodiscard]] std::vector<std::uint8_t> readBytes(const std::filesystem::path& path);
[[nodiscard]] std::string readText(const std::filesystem::path& path);

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_TEMPDIRECTORY_H_
