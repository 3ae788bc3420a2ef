// Documents as programs read them (JSON, RFC 8259). The JSON library stays behind this header.

#ifndef ORVEX_CLI_JSONOUTPUT_H_
#define ORVEX_CLI_JSONOUTPUT_H_

#include <ostream>
#include <string>

#include "client/Value.h"

namespace cli {

// Prints a document in UTF-8: its texts are made so (see platform/Texts.h), and bytes that are none
// after all appear as replacement characters. What would disturb a terminal is escaped as "\u202e"
// (see Utils/Printable.h), which a program reads as the same text.
void printJson(std::ostream& out, const client::Value& document);

// Returns a document on one line, without blanks.
[[nodiscard]] std::string toJsonLine(const client::Value& document);

}  // namespace cli

#endif  // ORVEX_CLI_JSONOUTPUT_H_
