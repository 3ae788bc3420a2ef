// Texts in firmware files and adapters: their bytes, made fit for a terminal.
//
// Pure functions; they throw nothing but std::bad_alloc.

#ifndef ORVEX_MIDAPI_BYTETEXT_H_
#define ORVEX_MIDAPI_BYTETEXT_H_

#include <cstdint>
#include <span>
#include <string>

namespace ma {

// Utf16 tells its order by a byte order mark, and is little endian without one.
enum class TextEncoding { Ascii, Utf8, Utf16, Utf16Le, Utf16Be };

// Returns the text in UTF-8. What does not show as itself (see platform/Utf8.h) and each byte that
// belongs to no character stands as "\x1b", half a surrogate pair as "\ud800". Left out are a byte
// order mark in front, and the blanks and zeros at the end by which fields are filled up.
[[nodiscard]] std::string decodeText(std::span<const std::uint8_t> bytes, TextEncoding encoding);

}  // namespace ma

#endif  // ORVEX_MIDAPI_BYTETEXT_H_
