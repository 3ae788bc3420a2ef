// The words of the help and of advice, as somebody at this platform would write them. Defined per
// platform.
//
// Texts are written for POSIX, where they stay as they are. Windows has other paths and another
// quoting at its prompt, and its program does not speak to hosts: what is said of them is left out.
// Any thread may call.

#ifndef ORVEX_CLI_LOCALWORDS_H_
#define ORVEX_CLI_LOCALWORDS_H_

#include <string>

namespace cli {

// Returns a sentence of the program's own, or a part of one, with the paths of the platform. What a
// user has named goes in behind that: it stays as it is.
[[nodiscard]] std::string toLocalWords(std::string text);

// Returns a text of paragraphs, with empty lines between them. A paragraph that begins with
// "Example" is a heading and examples, which are the lines that begin with two blanks; another one
// with such lines is a table.
[[nodiscard]] std::string toLocalHelp(const std::string& text);

// Returns whether options that are about hosts are shown.
[[nodiscard]] bool hasHosts();

}  // namespace cli

#endif  // ORVEX_CLI_LOCALWORDS_H_
