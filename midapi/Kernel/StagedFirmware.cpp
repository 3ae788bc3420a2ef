#include "midapi/Kernel/StagedFirmware.h"

#include "midapi/FlashBackend.h"
#include "platform/Texts.h"

namespace ma {
namespace {

std::string baseName(const AdapterAddress& adapter) {
  return "quorvel-" + toFolderName(adapter) + ".fw";
}

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
                         "; make room there or let it be written, or name another folder of the "
                         "kernel's with FirmwareFolder");
  }
}

void sweepStagedFirmware(FileSystem& files, const std::filesystem::path& folder,
                         const AdapterAddress& adapter) {
  const std::string ours = baseName(adapter);
  sweepTemporaryFiles(files, folder, [&ours](const std::string& name) { return name == ours; });
}

}  // namespace ma
