// Instances as a command shows them: each with its path and its properties.

#ifndef ORVEX_CLI_INSTANCESOUTPUT_H_
#define ORVEX_CLI_INSTANCESOUTPUT_H_

#include <string>

#include "cli/Context.h"
#include "client/Snapshot.h"

namespace cli {

// Prints them to the context's results; with --json one document, [{"path", "properties"}].
// `whenNone` is the line in the place of none.
void printInstances(const Context& context, const client::Instances& instances,
                    client::NullProperties nulls, const std::string& whenNone);

}  // namespace cli

#endif  // ORVEX_CLI_INSTANCESOUTPUT_H_
