// Paths as the system's calls take them whatever their length.

#ifndef ORVEX_PLATFORM_WINDOWS_SYSTEMPATH_H_
#define ORVEX_PLATFORM_WINDOWS_SYSTEMPATH_H_

#include <filesystem>

namespace platform {

// Returns the path as the calls with a W at their end take it. One of some 240 characters or more
// stands behind "\\?\", without which they take 259 characters at the most, and folders fewer; any
// other as it is. It names the same file, and is for calls alone: people know it by its own name.
[[nodiscard]] std::filesystem::path toSystemPath(const std::filesystem::path& path);

}  // namespace platform

#endif  // ORVEX_PLATFORM_WINDOWS_SYSTEMPATH_H_
