#include "midapi/Kernel/FlashJournal.h"

#include <cstddef>
#include <exception>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

#include "midapi/BoundedJson.h"
#include "midapi/DescriptionFault.h"
#include "midapi/FieldReader.h"
#include "midapi/FlashBackend.h"
#include "midapi/Hex.h"
#include "midapi/Kernel/FileLockTable.h"
#include "midapi/TemporaryFiles.h"
#include "platform/Texts.h"

namespace ma {
namespace {

constexpr const char* kEntrySuffix = ".json";

// A lock stays for each adapter that was ever written.
constexpr std::size_t kMaxNames = 100'000;

std::vector<NamedVersion> readVersions(const FieldReader& fields, const char* field) {
  const Json& versions = fields.need(field);
  if (!versions.is_object()) {
    refuseField(field, "must be an object");
  }
  std::vector<NamedVersion> list;
  for (const auto& [name, value] : versions.items()) {
    if (!value.is_string()) {
      refuseField(std::string(field) + "." + name, "must be a text");
    }
    list.push_back({name, value.get<std::string>()});
  }
  return list;
}

// Room beforehand: a list of members that grows destroys values that are not empty.
void makeObject(Json& json, std::size_t members) {
  json = Json::object();
  json.get_ref<Json::object_t&>().reserve(members);
}

void put(const std::vector<NamedVersion>& versions, Json& json) {
  makeObject(json, versions.size());
  for (const NamedVersion& version : versions) {
    json[version.name] = version.value;
  }
}

FlashEntry parseEntry(std::string_view text) {
  Json json = parseJsonObject(text);
  const EmptiedJson emptied(json);
  const FieldReader fields(json, "");
  FlashEntry entry;
  entry.size = fields.number("size", 0, std::numeric_limits<std::uint64_t>::max());
  entry.digest = fields.digest("digest");
  entry.before = readVersions(fields, "before");
  entry.expected = readVersions(fields, "expected");
  entry.running = readVersions(fields, "running");
  return entry;
}

std::string formatEntry(const FlashEntry& entry) {
  Json json;
  const EmptiedJson emptied(json);
  makeObject(json, 5);
  json["size"] = entry.size;
  json["digest"] = hexText(entry.digest, kDigestDigits);
  put(entry.running, json["running"]);
  put(entry.before, json["before"]);
  put(entry.expected, json["expected"]);
  return formatJson(json);
}

std::optional<FlashEntry> readEntry(FileSystem& files, const std::filesystem::path& path) {
  try {
    const FileBytes bytes = files.read(path, kMaxJsonSize);
    return parseEntry({reinterpret_cast<const char*>(bytes.view().data()), bytes.view().size()});
  } catch (const FileFault& fault) {
    if (fault.isMissingFile()) {
      return std::nullopt;
    }
    throw FlashFault(FlashError::InputOutput, fault.what());
  } catch (const DescriptionFault& fault) {
    throw FlashFault(FlashError::InputOutput,
                     platform::toShownText(path) + " is no entry of a flash: " + fault.what() +
                         "; compare the adapter's firmware with what it should be, and remove "
                         "the file");
  }
}

[[noreturn]] void failToKeep(const std::exception& fault) {
  throw FlashFault(
      FlashError::InputOutput,
      std::string("no record of the update can be kept, so it has not begun: ") + fault.what());
}

}  // namespace

FlashJournal::Claim::Claim(FileSystem& files, std::filesystem::path entry,
                           std::unique_ptr<FileLock> lock)
    : m_files(&files), m_entry(std::move(entry)), m_lock(std::move(lock)) {}

std::optional<FlashEntry> FlashJournal::Claim::leftOver() const {
  return readEntry(*m_files, m_entry);
}

void FlashJournal::Claim::enter(const FlashEntry& entry) const {
  try {
    const std::string text = formatEntry(entry);
    replaceContent(*m_files, m_entry,
                   {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
  } catch (const FileFault& fault) {
    m_files->removeQuietly(m_entry);  // it may stand there, and the disk not know it
    failToKeep(fault);
  } catch (const DescriptionFault& fault) {
    failToKeep(fault);
  }
}

void FlashJournal::Claim::clear() const {
  try {
    m_files->remove(m_entry);
  } catch (const FileFault& fault) {
    throw FlashFault(FlashError::InputOutput, fault.what());
  }
}

void FlashJournal::Claim::clearQuietly() const {
  try {
    clear();
  } catch (const FlashFault&) {
    return;
  }
}

FlashJournal::FlashJournal(FileSystem& files, std::filesystem::path folder, platform::Clock& clock)
    : m_files(files), m_folder(std::move(folder)), m_clock(clock) {}

FlashJournal::Claim FlashJournal::claim(const AdapterAddress& adapter) const {
  const std::filesystem::path path = lockPath(adapter);
  try {
    m_files.createFolders(m_folder);
    auto lock = waitForLock(m_files, path, m_clock);
    if (lock == nullptr) {
      throw FlashFault(FlashError::InputOutput, "another program is writing the adapter (" +
                                                    platform::toShownText(path) +
                                                    "); try again when it is done");
    }
    const std::string entry = entryPath(adapter).filename().string();
    sweepTemporaryFiles(m_files, m_folder,
                        [&entry](const std::string& name) { return name == entry; });
    return {m_files, entryPath(adapter), std::move(lock)};
  } catch (const FileFault& fault) {
    failToKeep(fault);
  }
}

FlashJournal::Attempt FlashJournal::tryClaim(const AdapterAddress& adapter) const {
  Attempt attempt;
  try {
    if (auto lock = m_files.lock(lockPath(adapter))) {
      attempt.claim.emplace(m_files, entryPath(adapter), std::move(lock));
    } else {
      attempt.isTaken = true;
    }
  } catch (const FileFault&) {
    return attempt;
  }
  return attempt;
}

std::optional<FlashEntry> FlashJournal::entry(const AdapterAddress& adapter) const {
  return readEntry(m_files, entryPath(adapter));
}

bool FlashJournal::hasEntry(const AdapterAddress& adapter) const {
  try {
    return m_files.exists(entryPath(adapter));
  } catch (const FileFault&) {
    return true;  // whoever reads it says why it cannot be read
  }
}

std::set<AdapterAddress> FlashJournal::adapters() const {
  std::set<AdapterAddress> found;
  try {
    for (const std::filesystem::path& name : m_files.entries(m_folder, kMaxNames)) {
      const auto adapter =
          name.extension() == kEntrySuffix ? parseFolderName(name.stem().string()) : std::nullopt;
      if (adapter) {
        found.insert(*adapter);
      }
    }
  } catch (const FileFault&) {
    return found;
  }
  return found;
}

bool FlashJournal::isClaimed(const AdapterAddress& adapter) const {
  return isFileLocked(lockPath(adapter));
}

std::filesystem::path FlashJournal::lockPath(const AdapterAddress& adapter) const {
  return m_folder / (toFolderName(adapter) + ".lock");
}

std::filesystem::path FlashJournal::entryPath(const AdapterAddress& adapter) const {
  return m_folder / (toFolderName(adapter) + kEntrySuffix);
}

}  // namespace ma
