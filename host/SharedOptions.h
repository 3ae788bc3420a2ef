// Arguments that the daemon and the command line have in common, for either's parser.

#ifndef ORVEX_HOST_SHAREDOPTIONS_H_
#define ORVEX_HOST_SHAREDOPTIONS_H_

#include <string>

#include "host/ParserNames.h"

namespace host {

// Returns why a parser refuses a value that must not be empty; nothing where it is not.
[[nodiscard]] std::string refuseEmpty(const std::string& text);
// The same as a check.
[[nodiscard]] CLI::Validator notEmpty();

// Adds --adapters DIR; `directory` must outlive the parser.
void addAdaptersOption(CLI::App& app, std::string& directory);

// Adds --log-level N and its check; `level` must outlive the parser.
void addLogLevelOption(CLI::App& app, std::string& level);

}  // namespace host

#endif  // ORVEX_HOST_SHAREDOPTIONS_H_
