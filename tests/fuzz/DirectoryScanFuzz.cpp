// Whatever stands in a directory, each name in it is a firmware file or is left out with a reason,
// a folder in silence; and the next look finds the same.
//
// An input is a row of entries: a letter for what it is ("f" file, "d" folder, "l" link, "p" pipe),
// its name up to a line end, and of a file two bytes, the low one first, with the length of its
// content, which follows; of a link, where it leads, up to a line end.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <vector>

#include "inventory/FirmwareSearch.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/support/TempDirectory.h"

namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kMaxImageSize = 4096;  // so that some files are too large

// Settings that no file of this machine has a say in.
class Config final : public utils::QuorvelConfig {
 public:
  explicit Config(std::string directory) : m_directory(std::move(directory)) {}

  // One that is there and is looked at a second time, one that is not.
  std::vector<std::string> getFWFilePaths() override {
    return {m_directory, m_directory + "/.", m_directory + "/no such"};
  }
  std::uint32_t getMaxImageSize() override { return kMaxImageSize; }

 private:
  const std::string m_directory;
};

class Findings final : public inventory::FirmwareFindings {
 public:
  void addFile(inventory::FirmwareFilePtr file) override { files.push_back(std::move(file)); }
  void addProblem(const std::string& problem) override { problems.push_back(problem); }
  [[nodiscard]] bool isEnough() const override { return false; }

  std::vector<inventory::FirmwareFilePtr> files;
  std::vector<std::string> problems;
};

std::string takeLine(std::string_view& input) {
  const std::string_view line = input.substr(0, input.find('\n'));
  input.remove_prefix(std::min(line.size() + 1, input.size()));
  return std::string(line);
}

std::string takeContent(std::string_view& input) {
  constexpr std::size_t kBytes = 256;
  const auto byteAt = [&input](std::size_t place) -> std::size_t {
    return place < input.size() ? static_cast<unsigned char>(input[place]) : 0;
  };
  const std::size_t size = byteAt(0) + kBytes * byteAt(1);
  input.remove_prefix(std::min<std::size_t>(2, input.size()));
  const std::string_view content = input.substr(0, size);
  input.remove_prefix(content.size());
  return std::string(content);
}

// A name that no directory can have makes nothing.
void makeEntries(const fs::path& directory, std::string_view input) {
  constexpr std::size_t kMostEntries = 64;
  std::error_code ignored;
  for (std::size_t made = 0; !input.empty() && made < kMostEntries; ++made) {
    const char kind = input.front();
    input.remove_prefix(1);
    std::string name = takeLine(input);
    std::replace(name.begin(), name.end(), '/', '_');
    const fs::path path = directory / name.c_str();
    if (name.c_str()[0] == '\0' || name == "." || name == "..") {
      continue;
    }
    if (kind == 'd') {
      fs::create_directory(path, ignored);
    } else if (kind == 'l') {
      fs::create_symlink(takeLine(input).c_str(), path, ignored);
    } else if (kind == 'p') {
      static_cast<void>(mkfifo(path.c_str(), S_IRUSR));
    } else if (const fs::file_status status = fs::symlink_status(path, ignored);
               !fs::exists(status) || fs::is_regular_file(status)) {
      std::ofstream(path, std::ios::binary) << takeContent(input);
    }
  }
}

void requireSame(const Findings& one, const Findings& other) {
  test::require(one.problems == other.problems, "the next look has the same problems");
  test::require(one.files.size() == other.files.size(), "and as many files");
  for (std::size_t i = 0; i < one.files.size(); ++i) {
    test::require(one.files[i]->path == other.files[i]->path &&
                      one.files[i]->description.digest == other.files[i]->description.digest,
                  "and the same ones");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const test::TempDirectory own;
  const fs::path directory = own.path() / "firmware";
  fs::create_directory(directory);
  makeEntries(directory, {reinterpret_cast<const char*>(data), size});
  Config config(directory.string());
  inventory::FirmwareSearch search;
  Findings findings;
  search.look(config, findings);

  std::set<std::string> found;
  for (const inventory::FirmwareFilePtr& file : findings.files) {
    test::require(found.insert(file->path).second, "a file is found once");
    test::require(file->description.problem.empty() &&
                      file->description.format != ma::FirmwareFormat::Unknown,
                  "a file is sound and of a known format");
    test::require(fs::file_size(file->path) <= kMaxImageSize, "no file is larger than it may be");
  }
  std::size_t expected = 1;  // the directory that is not there
  for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
    std::error_code ignored;
    expected += entry.is_directory(ignored) ? 0 : 1;
  }
  test::require(findings.files.size() + findings.problems.size() == expected,
                "each name is found or left out");
  Findings again;
  search.look(config, again);
  requireSame(findings, again);
  return 0;
}
