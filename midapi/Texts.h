// Texts of the program, and what stands for them outside: paths and UTF-8. Defined per platform.
//
// POSIX passes the bytes through. On Windows a text of the program is in the ANSI code page, while
// std::filesystem and the descriptions of adapters give out UTF-8. Paths stay paths inside the
// library: what a text shows is for people and finds no file. What the code page lacks appears as a
// likeness or a question mark. Any thread may call.

#ifndef ORVEX_MIDAPI_TEXTS_H_
#define ORVEX_MIDAPI_TEXTS_H_

#include <filesystem>
#include <string>

namespace ma {

[[nodiscard]] std::string toShownText(const std::filesystem::path& path);

[[nodiscard]] std::string fromUtf8(const std::string& utf8);
[[nodiscard]] std::string toUtf8(const std::string& text);

}  // namespace ma

#endif  // ORVEX_MIDAPI_TEXTS_H_
