// Texts of the program, and what stands for them outside: paths and UTF-8. Defined per platform.
//
// POSIX passes the bytes through. On Windows the arguments, the environment, the settings and the
// paths of Os/Files.h are texts in the ANSI code page; std::filesystem would take their bytes for
// characters, and gives out UTF-8, as the descriptions of adapters do. So every text that names a
// file becomes a path here, and every path a text. What the code page lacks appears as a likeness
// or a question mark, unless an operation says otherwise. Any thread may call. Where the system
// cannot convert a text (one of 2 GiB, say), Windows throws std::system_error.

#ifndef ORVEX_PLATFORM_TEXTS_H_
#define ORVEX_PLATFORM_TEXTS_H_

#include <filesystem>
#include <optional>
#include <string>

namespace platform {

[[nodiscard]] std::filesystem::path toPath(const std::string& text);

// Returns the text that names the same file; none when the path has characters that the code page
// lacks, for their likenesses may name another file.
[[nodiscard]] std::optional<std::string> toText(const std::filesystem::path& path);

// Returns the same with slashes between the names, as in a URI.
[[nodiscard]] std::optional<std::string> toGenericText(const std::filesystem::path& path);

// Returns a text for people, which finds no file.
[[nodiscard]] std::string toShownText(const std::filesystem::path& path);

[[nodiscard]] std::string fromUtf8(const std::string& utf8);
[[nodiscard]] std::string toUtf8(const std::string& text);

}  // namespace platform

#endif  // ORVEX_PLATFORM_TEXTS_H_
