// Texts that came from outside, made fit for messages, terminals and shells. Any thread.

#ifndef ORVEX_CLIENT_TEXTS_H_
#define ORVEX_CLIENT_TEXTS_H_

#include <string>
#include <string_view>
#include <vector>

namespace client {

// Returns UTF-8 text with its control characters as escapes: "\n", "\t", "\x1b".
[[nodiscard]] std::string toPrintable(std::string_view text);

// Returns the texts with the separator between them.
[[nodiscard]] std::string join(const std::vector<std::string>& texts, const char* separator);

// Returns the text as one word of a POSIX shell, in quotes where it needs them.
[[nodiscard]] std::string quoteForShell(const std::string& text);

}  // namespace client

#endif  // ORVEX_CLIENT_TEXTS_H_
