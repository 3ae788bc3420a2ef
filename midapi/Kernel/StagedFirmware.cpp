#include "midapi/Kernel/StagedFirmware.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <iterator>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "midapi/FlashBackend.h"
#include "platform/Texts.h"

namespace ma {
namespace {

std::string baseName(const AdapterAddress& adapter) {
  return "quorvel-" + toFolderName(adapter) + ".fw";
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
  // With the rights that count for files, which are not those of who started the program.
  if (::faccessat(AT_FDCWD, (folder / ".").c_str(), W_OK | X_OK, AT_EACCESS) == 0) {
    return {};
  }
  return "firmware cannot be put into " + platform::toShownText(folder) +
         ", where the kernel looks for it: " + std::generic_category().message(errno) + "; " +
         kAdvice;
}

std::vector<AdapterAddress> findStagedFirmware(FileSystem& files,
                                               const std::filesystem::path& folder,
                                               const std::set<AdapterAddress>& adapters) {
  std::set<std::string> staged;
  try {
    for (const std::filesystem::path& name : files.entries(folder, kMaxNames)) {
      if (auto base = baseOfTemporary(name)) {
        staged.insert(std::move(*base));
      }
    }
  } catch (const FileFault&) {
    return {};
  }
  std::vector<AdapterAddress> found;
  std::ranges::copy_if(
      adapters, std::back_inserter(found),
      [&staged](const AdapterAddress& adapter) { return staged.contains(baseName(adapter)); });
  return found;
}

void sweepStagedFirmware(FileSystem& files, const std::filesystem::path& folder,
                         const AdapterAddress& adapter) {
  const std::string ours = baseName(adapter);
  sweepTemporaryFiles(files, folder, [&ours](const std::string& name) { return name == ours; });
}

}  // namespace ma
