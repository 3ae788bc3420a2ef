// Instances as a command shows them: each with its path and its properties.

#ifndef ORVEX_CLI_INSTANCESOUTPUT_H_
#define ORVEX_CLI_INSTANCESOUTPUT_H_

#include <string>

#include "cli/Context.h"
#include "client/Connection.h"
#include "client/Snapshot.h"

namespace cli {

// Prints them to the context's results; with --json one document, [{"path", "properties"}].
// `whenNone` is the line in the place of none. Where a connection is given, numbers have the names
// that it knows of them: behind them, or in JSON as a member "names" of the instance.
void printInstances(const Context& context, const client::Instances& instances,
                    client::NullProperties nulls, const std::string& whenNone,
                    client::Connection* namesFrom = nullptr);

}  // namespace cli

#endif  // ORVEX_CLI_INSTANCESOUTPUT_H_
