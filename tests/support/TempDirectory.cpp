#include "tests/support/TempDirectory.h"

#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <system_error>

namespace test {

namespace fs = std::filesystem;

TempDirectory::TempDirectory() {
  std::random_device random;
  do {
    m_path = fs::temp_directory_path() / ("quorvel-test-" + std::to_string(random()));
  } while (!fs::create_directory(m_path));
}

TempDirectory::~TempDirectory() {
  std::error_code ignored;
  fs::remove_all(m_path, ignored);
}

fs::path TempDirectory::write(const fs::path& name,
                              const std::vector<std::uint8_t>& content) const {
  return write(name, std::string(content.begin(), content.end()));
}

fs::path TempDirectory::write(const fs::path& name, const std::string& content) const {
  const fs::path path = m_path / name;
  fs::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << content;
  file.close();
  if (!file) {
    throw std::runtime_error("cannot write " + path.string());
  }
  return path;
}

fs::path TempDirectory::writePrivate(const fs::path& name, const std::string& content) const {
  fs::path path = write(name, content);
  fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write);
  return path;
}

std::vector<std::uint8_t> readBytes(const fs::path& path) {
  const std::string text = readText(path);
  return {text.begin(), text.end()};
}

std::string readText(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::string content((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  if (!file) {
    throw std::runtime_error("cannot read " + path.string());
  }
  return content;
}

}  // namespace test
