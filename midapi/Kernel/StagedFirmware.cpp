#include "midapi/Kernel/StagedFirmware.h"

#include <cerrno>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

#include "midapi/FlashBackend.h"
#include "platform/Texts.h"

namespace ma {
namespace {

std::string baseName(const AdapterAddress& adapter) {
  return "quorvel-" + toFolderName(adapter) + ".fw";
}

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

void sweepStagedFirmware(FileSystem& files, const std::filesystem::path& folder,
                         const AdapterAddress& adapter) {
  const std::string ours = baseName(adapter);
  sweepTemporaryFiles(files, folder, [&ours](const std::string& name) { return name == ours; });
}

}  // namespace ma
