// The whole of a path that a person may have shortened. Defined per platform.
//
// Windows: the system says what a path means. std::filesystem of this compiler knows no roots but
// those of drives: wherever it takes "\\server\share\new.rom" apart into its names, it puts the
// current drive's "\server\share\new.rom" in its place, which is another file. Any thread may call.

#ifndef ORVEX_PLATFORM_PATHS_H_
#define ORVEX_PLATFORM_PATHS_H_

#include <filesystem>
#include <system_error>

namespace platform {

// Returns whether the path names the same file wherever the process stands.
[[nodiscard]] bool isAbsolute(const std::filesystem::path& path);

// Returns the absolute path of what `path` names from where the process stands; an empty one, and
// the reason, where the system cannot tell. Windows takes "." and ".." out of every path, and the
// sign \\?\ from before one, which is about the system's own limits and names no other file.
[[nodiscard]] std::filesystem::path makeAbsolute(const std::filesystem::path& path,
                                                 std::error_code& error);

// Returns the same without "." and "..", without a look at what is there: on POSIX that may be
// another file where one of the names before a ".." is a link.
[[nodiscard]] std::filesystem::path makeNormal(const std::filesystem::path& path,
                                               std::error_code& error);

}  // namespace platform

#endif  // ORVEX_PLATFORM_PATHS_H_
