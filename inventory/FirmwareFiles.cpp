#include "inventory/FirmwareFiles.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include "Os/Files.h"
#include "Os/QuorvelConfig.h"
#include "Utils/Log.h"
#include "platform/Texts.h"

namespace inventory {
namespace {

namespace fs = std::filesystem;

constexpr utils::LogSource kLog{"FirmwareFiles"};
constexpr std::uintmax_t kMaxFirmwareFile = std::uintmax_t{16} << 20;  // bytes

// One look through the directories.
class Search {
 public:
  void searchDirectory(const fs::path& directory);

  std::vector<FirmwareFile> files;
  std::set<std::string> problems;

 private:
  void examine(const fs::path& path);
  // Returns why the file is none that can be read as a firmware file, empty when it can.
  static std::string checkFile(const fs::path& path);

  std::set<fs::path> m_seen;
};

void Search::searchDirectory(const fs::path& directory) {
  std::vector<fs::path> paths;
  std::error_code error;
  for (fs::directory_iterator entry(directory, error), end; !error && entry != end;
       entry.increment(error)) {
    paths.push_back(entry->path());
  }
  if (error) {
    problems.insert("Firmware directory '" + platform::toShownText(directory) +
                    "' cannot be read: " + error.message());
  }
  // A directory lists its files in an order of its own, which clients should not depend on.
  std::sort(paths.begin(), paths.end());
  for (const fs::path& path : paths) {
    examine(fs::absolute(path, error).lexically_normal());
  }
}

void Search::examine(const fs::path& path) {
  std::error_code error;
  // A directory is left out in silence: an operator may keep files that are not offered in one.
  if (fs::is_directory(path, error) || !m_seen.insert(path).second) {
    return;
  }
  const std::optional<std::string> name = platform::toGenericText(path);
  FirmwareFile file{name.value_or(platform::toShownText(path)), {}};
  std::string problem =
      name ? checkFile(path) : "its path has characters that the code page of this system lacks";
  if (problem.empty()) {
    const std::vector<std::uint8_t> content = readFirmwareFile(file.path);
    problem = ma::describeFlashImage(content.data(), static_cast<std::uint32_t>(content.size()),
                                     file.images);
  }
  if (problem.empty()) {
    files.push_back(std::move(file));
  } else {
    problems.insert("Firmware file '" + file.path + "' is left out: " + problem);
  }
}

std::string Search::checkFile(const fs::path& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (!fs::exists(status)) {
    return "it cannot be found";
  }
  if (!fs::is_regular_file(status)) {
    return "it is no regular file";
  }
  return fs::file_size(path, error) > kMaxFirmwareFile ? "it is larger than 16 MiB" : "";
}

}  // namespace

std::vector<std::uint8_t> readFirmwareFile(const std::string& path) {
  std::error_code error;
  const std::uintmax_t size = fs::file_size(platform::toPath(path), error);
  if (error || size > kMaxFirmwareFile) {
    return {};
  }
  std::vector<std::uint8_t> content(size);
  const std::int32_t read =
      os::readFile(path, content.data(), static_cast<std::int32_t>(content.size()));
  content.resize(static_cast<std::size_t>(read));  // the file may have shrunk since
  return content;
}

std::vector<FirmwareFile> FirmwareFiles::find() {
  Search search;
  for (const std::string& directory : utils::QuorvelConfig::getInstance()->getFWFilePaths()) {
    search.searchDirectory(platform::toPath(directory));
  }
  report(std::move(search.problems));
  return std::move(search.files);
}

void FirmwareFiles::report(std::set<std::string> problems) {
  const utils::ScopedLock lock(m_lock);
  for (const std::string& problem : problems) {
    if (!m_reported.contains(problem)) {
      utils::logError(kLog, "inventory::FirmwareFiles::find", "%s", problem.c_str());
    }
  }
  m_reported = std::move(problems);
}

}  // namespace inventory
