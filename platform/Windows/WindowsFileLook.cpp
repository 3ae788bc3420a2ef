#include <optional>
#include <windows.h>

#include "platform/FileLook.h"
#include "platform/Windows/Handle.h"
#include "platform/Windows/NoErrorDialogs.h"
#include "platform/Windows/SystemPath.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

// To be asked, not to be read: whoever else has it open does not mind.
Handle openToAsk(const fs::path& path) {
  const HANDLE opened = CreateFileW(toSystemPath(path).c_str(), FILE_READ_ATTRIBUTES,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  return opened != INVALID_HANDLE_VALUE ? Handle(opened) : Handle();
}

std::optional<BY_HANDLE_FILE_INFORMATION> ask(const Handle& file) {
  BY_HANDLE_FILE_INFORMATION found{};
  return file.isOpen() && GetFileInformationByHandle(file.get(), &found) != FALSE
             ? std::optional(found)
             : std::nullopt;
}

std::uint64_t join(DWORD high, DWORD low) {
  return (std::uint64_t{high} << 32) | low;
}

// Of a file or a directory, by what the system calls both of them.
template <class Found>
FileLook toLook(const Found& found) {
  return (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0
             ? FileLook{FileKind::Directory, 0}
             : FileLook{FileKind::Regular, join(found.nFileSizeHigh, found.nFileSizeLow)};
}

// Asks without opening anything, which is the faster way by far. Nothing where that says too
// little: of links and devices, and of what is missing.
std::optional<FileLook> lookFromOutside(const fs::path& path) {
  WIN32_FILE_ATTRIBUTE_DATA found{};
  constexpr DWORD kElsewhere = FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DEVICE;
  if (GetFileAttributesExW(toSystemPath(path).c_str(), GetFileExInfoStandard, &found) == FALSE ||
      (found.dwFileAttributes & kElsewhere) != 0) {
    return std::nullopt;
  }
  return toLook(found);
}

}  // namespace

FileLook lookAtFile(const fs::path& path) {
  const NoErrorDialogs noDialogs;
  if (const auto look = lookFromOutside(path)) {
    return *look;
  }
  const Handle file = openToAsk(path);
  if (!file.isOpen()) {
    return {};
  }
  const auto found = ask(file);
  if (GetFileType(file.get()) != FILE_TYPE_DISK || !found) {
    return {FileKind::Other, 0};
  }
  return toLook(*found);
}

// A file keeps its number at least for as long as somebody has it open.
bool areOneFile(const fs::path& one, const fs::path& other) {
  const NoErrorDialogs noDialogs;
  const Handle first = openToAsk(one);
  const Handle second = openToAsk(other);
  const auto left = ask(first);
  const auto right = ask(second);
  return left && right && left->dwVolumeSerialNumber == right->dwVolumeSerialNumber &&
         join(left->nFileIndexHigh, left->nFileIndexLow) ==
             join(right->nFileIndexHigh, right->nFileIndexLow);
}

}  // namespace platform
