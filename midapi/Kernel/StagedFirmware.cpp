#include "midapi/Kernel/StagedFirmware.h"

#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <optional>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "midapi/FlashBackend.h"
#include "platform/Texts.h"

namespace ma {
namespace {

constexpr std::string_view kPrefix = "quorvel-";
constexpr std::string_view kSuffix = ".fw";

std::string baseName(const AdapterAddress& adapter) {
  return std::string(kPrefix) + toFolderName(adapter) + std::string(kSuffix);
}

// The other way round; nothing for what others have put there.
std::optional<AdapterAddress> adapterOf(std::string_view name) {
  if (!name.starts_with(kPrefix) || !name.ends_with(kSuffix) ||
      name.size() < kPrefix.size() + kSuffix.size()) {
    return std::nullopt;
  }
  name.remove_prefix(kPrefix.size());
  name.remove_suffix(kSuffix.size());
  return parseFolderName(name);
}

// Root's group is root.
bool isOthersToWrite(const struct stat& status) {
  const bool isStrangers = status.st_uid != 0 && status.st_uid != ::geteuid();
  const bool isGroupsToWrite = (status.st_mode & S_IWGRP) != 0 && status.st_gid != 0;
  return isStrangers || isGroupsToWrite || (status.st_mode & S_IWOTH) != 0;
}

// The kernel's folder has some hundred names in it, in which nobody looks for more.
constexpr std::size_t kMaxNames = 10'000;

constexpr const char* kAdvice =
    "let it be written, or name another folder of the kernel's with FirmwareFolder";

}  // namespace

StagedFirmware::StagedFirmware(FileSystem& files, const std::filesystem::path& folder,
                               const AdapterAddress& adapter, ConstBytes content)
    : m_file(files, temporaryName(folder / baseName(adapter))) {
  try {
    writeNewFile(files, m_file.path(), content);
  } catch (const FileFault& fault) {
    throw FlashFault(FlashError::InputOutput,
                     "the firmware cannot be put into " + platform::toShownText(folder) +
                         ", where the kernel looks for it: " + fault.what() +
                         "; make room there, or " + kAdvice);
  }
}

std::string whyNotStageable(const std::filesystem::path& folder) {
  const std::string refusal = "firmware cannot be put into " + platform::toShownText(folder) +
                              ", where the kernel looks for it: ";
  // With the rights that count for files, which are not those of who started the program.
  if (::faccessat(AT_FDCWD, (folder / ".").c_str(), W_OK | X_OK, AT_EACCESS) != 0) {
    return refusal + std::generic_category().message(errno) + "; " + kAdvice;
  }
  struct stat status {};
  if (::stat(folder.c_str(), &status) == 0 && isOthersToWrite(status)) {
    return refusal + "other users may write there, and put other files in the place of checked " +
           "ones; take that right from them (chmod go-w), or name another folder of the kernel's " +
           "with FirmwareFolder";
  }
  return {};
}

std::set<AdapterAddress> findStagedFirmware(FileSystem& files,
                                            const std::filesystem::path& folder) {
  std::set<AdapterAddress> found;
  try {
    for (const std::filesystem::path& name : files.entries(folder, kMaxNames)) {
      const auto base = baseOfTemporary(name);
      if (const auto adapter = base ? adapterOf(*base) : std::nullopt) {
        found.insert(*adapter);
      }
    }
  } catch (const FileFault&) {
    return {};
  }
  return found;
}

void sweepStagedFirmware(FileSystem& files, const std::filesystem::path& folder,
                         const AdapterAddress& adapter) {
  const std::string ours = baseName(adapter);
  sweepTemporaryFiles(files, folder, [&ours](const std::string& name) { return name == ours; });
}

}  // namespace ma
