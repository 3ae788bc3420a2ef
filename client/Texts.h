// Texts put together for messages and shells. Any thread.

#ifndef ORVEX_CLIENT_TEXTS_H_
#define ORVEX_CLIENT_TEXTS_H_

#include <string>
#include <vector>

namespace client {

// Returns the texts with the separator between them.
[[nodiscard]] std::string join(const std::vector<std::string>& texts, const char* separator);

// Returns the text as one word of a POSIX shell, in quotes where it needs them.
[[nodiscard]] std::string quoteForShell(const std::string& text);

}  // namespace client

#endif  // ORVEX_CLIENT_TEXTS_H_
