#include "inventory/FirmwareSearch.h"

#include <filesystem>
#include <iterator>
#include <optional>
#include <set>
#include <system_error>
#include <utility>

#include "Os/FileCalls.h"
#include "Os/Files.h"
#include "Utils/RefusalTexts.h"
#include "platform/Directory.h"
#include "platform/FileLook.h"
#include "platform/Paths.h"
#include "platform/Texts.h"

namespace inventory {
namespace {

namespace fs = std::filesystem;

using platform::FileIdentity;

// A name in a directory that is no directory itself.
struct Entry {
  fs::path path;
  std::string defect;  // why it cannot be read as a firmware file, empty when it can
  std::uintmax_t size = 0;
  std::optional<FileIdentity> identity;
};

// The first names of a directory.
struct Listing {
  std::vector<Entry> entries;
  std::size_t leftOut = 0;  // how many follow
  std::error_code error;
};

Entry lookAt(fs::path path) {
  Entry entry{std::move(path), {}, 0, {}};
  const platform::FileLook look = platform::lookAtFile(entry.path);
  if (look.kind == platform::FileKind::Missing) {
    entry.defect = "it cannot be found";
  } else if (look.kind != platform::FileKind::Regular) {
    entry.defect = "it is no regular file";
  } else {
    entry.size = look.size;
    entry.identity = platform::identifyFile(entry.path);
  }
  return entry;
}

// A directory lists its files in an order of its own, which clients should not depend on. It may
// have any number of them.
void list(const fs::path& directory, std::size_t most, Listing& listing) {
  std::set<fs::path::string_type> names;
  listing.error = platform::forEachEntry(directory, [&names, &listing, most](const auto& entry) {
    // A directory is left out in silence: an operator may keep files that are not offered in
    // one.
    if (!entry.isDirectory) {
      names.insert(entry.name.native());
    }
    if (names.size() > most) {
      names.erase(std::prev(names.end()));
      ++listing.leftOut;
    }
    return true;
  });
  for (const fs::path::string_type& name : names) {
    listing.entries.push_back(lookAt(directory / name));
  }
}

// Returns what stands at the path, nothing where the file system does not answer.
std::optional<Entry> lookInTime(const std::string& path) {
  const auto entry = std::make_shared<Entry>();
  const os::FileAnswer answer =
      os::fileCalls().make(path, [entry, path] { *entry = lookAt(platform::toPath(path)); });
  return answer == os::FileAnswer::InTime ? std::optional(*entry) : std::nullopt;
}

// Returns why a file is not listed.
std::string findProblem(const ma::FirmwareDescription& file) {
  if (!file.problem.empty()) {
    return file.problem;
  }
  if (file.format == ma::FirmwareFormat::Unknown) {
    return "it is no firmware file of a known format";
  }
  return file.hasMoreDevices ? "it names more than " +
                                   std::to_string(ma::FirmwareDescription::kMostListed) + " devices"
                             : "";
}

std::vector<std::uint8_t> readAll(const std::string& path, std::size_t size) {
  std::vector<std::uint8_t> content(size);
  const std::int32_t read =
      os::readFile(path, content.data(), static_cast<std::int32_t>(content.size()));
  content.resize(static_cast<std::size_t>(read));  // the file may have shrunk since
  return content;
}

}  // namespace

std::optional<std::vector<std::uint8_t>> readFirmwareFile(const std::string& path) {
  const std::optional<Entry> entry = lookInTime(path);
  if (!entry) {
    return std::nullopt;
  }
  if (!entry->defect.empty() ||
      entry->size > utils::QuorvelConfig::getInstance()->getMaxImageSize()) {
    return std::vector<std::uint8_t>();
  }
  std::vector<std::uint8_t> content = readAll(path, entry->size);
  return content.size() == entry->size ? std::optional(std::move(content)) : std::nullopt;
}

std::optional<FileIdentity> identifyFirmwareFile(const std::string& path) {
  const std::optional<Entry> entry = lookInTime(path);
  return entry ? entry->identity : std::nullopt;
}

class FirmwareSearch::Look {
 public:
  Look(utils::QuorvelConfig& config, const std::map<std::string, Known>& before,
       FirmwareFindings& findings)
      : m_config(config),
        m_maxSize(config.getMaxImageSize()),
        m_before(before),
        m_findings(findings) {}

  void searchDirectory(const fs::path& directory);
  // Returns what the next look needs.
  std::map<std::string, Known> takeKnown() { return std::move(m_known); }

 private:
  void examine(const Entry& entry);
  void leaveOut(const std::string& path, const std::string& problem);
  // Returns what the file is; what it was, where it has not changed.
  Known describe(const std::string& path, const Entry& entry);

  utils::QuorvelConfig& m_config;
  const std::uint32_t m_maxSize;
  const std::map<std::string, Known>& m_before;
  FirmwareFindings& m_findings;
  std::map<std::string, Known> m_known;
  std::set<fs::path::string_type> m_seen;
};

void FirmwareSearch::Look::searchDirectory(const fs::path& directory) {
  std::error_code error;
  const fs::path absolute = platform::makeNormal(directory, error);
  const std::string shown = "Firmware directory '" + platform::toShownText(directory) + "' ";
  const auto listing = std::make_shared<Listing>();
  const std::size_t most = kMostFiles - m_seen.size();
  const os::FileAnswer answer = os::fileCalls().make(
      platform::toGenericText(absolute).value_or(platform::toShownText(absolute)),
      [listing, absolute, most] { list(absolute, most, *listing); });
  if (answer != os::FileAnswer::InTime) {
    m_findings.addProblem(shown + "cannot be read: its file system does not answer");
    return;
  }
  if (listing->error) {
    m_findings.addProblem(shown +
                          "cannot be read: " + listing->error.default_error_condition().message());
  }
  if (listing->leftOut > 0) {
    m_findings.addProblem(shown + "has too many files: the last " +
                          std::to_string(listing->leftOut) +
                          " by name are left out, since no more than " +
                          std::to_string(kMostFiles) + " are looked at in all directories");
  }
  for (const Entry& entry : listing->entries) {
    if (m_findings.isEnough()) {
      return;
    }
    examine(entry);
  }
}

void FirmwareSearch::Look::examine(const Entry& entry) {
  if (!m_seen.insert(entry.path.native()).second) {
    return;
  }
  const std::optional<std::string> name = platform::toGenericText(entry.path);
  const std::string path = name.value_or(platform::toShownText(entry.path));
  if (!name) {
    leaveOut(path, "its path has characters that the code page of this system lacks");
    return;
  }
  if (!entry.defect.empty()) {
    leaveOut(path, entry.defect);
    return;
  }
  if (entry.size > m_maxSize) {
    leaveOut(path, m_config.findSizeExcess(entry.size));
    return;
  }
  const Known known = describe(path, entry);
  if (known.file != nullptr) {
    m_findings.addFile(known.file);
  } else {
    leaveOut(path, known.problem);
  }
}

void FirmwareSearch::Look::leaveOut(const std::string& path, const std::string& problem) {
  m_findings.addProblem("Firmware file '" + path + "' is left out: " + problem);
}

FirmwareSearch::Known FirmwareSearch::Look::describe(const std::string& path, const Entry& entry) {
  const auto before = m_before.find(path);
  if (before != m_before.end() && entry.identity == before->second.identity) {
    m_known.insert(*before);
    return before->second;
  }
  Known made;
  const os::FileContent content = os::readContent(path, static_cast<std::int32_t>(entry.size));
  const auto size = static_cast<std::uint32_t>(content.size);
  if (size < entry.size) {  // it may have shrunk since
    made.problem = os::isInUse(path) ? utils::refusal::kFileInUse
                                     : "only " + std::to_string(size) + " of its " +
                                           std::to_string(entry.size) + " bytes could be read";
    return made;
  }
  auto file = std::make_shared<FirmwareFile>();
  file->path = path;
  file->description = ma::describeFirmware({content.bytes.get(), size});
  made.problem = findProblem(file->description);
  if (entry.identity && identifyFirmwareFile(path) == entry.identity) {
    file->identity = entry.identity;
  }
  if (made.problem.empty()) {
    made.file = file;
  }
  if (file->identity) {
    made.identity = *file->identity;
    m_known.emplace(path, made);
  }
  return made;
}

void FirmwareSearch::look(utils::QuorvelConfig& config, FirmwareFindings& findings) {
  Look look(config, m_known, findings);
  for (const std::string& directory : config.getFWFilePaths()) {
    if (findings.isEnough()) {
      return;
    }
    look.searchDirectory(platform::toPath(directory));
  }
  m_known = look.takeKnown();
}

}  // namespace inventory
