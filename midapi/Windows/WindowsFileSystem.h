// The file system of a Windows machine, with the clock by which it waits for readers.

#ifndef ORVEX_MIDAPI_WINDOWS_WINDOWSFILESYSTEM_H_
#define ORVEX_MIDAPI_WINDOWS_WINDOWSFILESYSTEM_H_

#include <memory>

#include "midapi/FileSystem.h"
#include "platform/Clock.h"

namespace ma {

// `clock` outlives the file system.
[[nodiscard]] std::unique_ptr<FileSystem> makeWindowsFileSystem(platform::Clock& clock);

}  // namespace ma

#endif  // ORVEX_MIDAPI_WINDOWS_WINDOWSFILESYSTEM_H_
