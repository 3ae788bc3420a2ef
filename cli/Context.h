// What the program hands to a command, and how a command ends: with a status, or by a client::Fault
// or another exception, which the program reports.

#ifndef ORVEX_CLI_CONTEXT_H_
#define ORVEX_CLI_CONTEXT_H_

#include <functional>
#include <ostream>
#include <string>

namespace cli {

enum class ExitStatus : int {
  Done = 0,
  Failed = 1,  // refused by the agent, or failed
  Usage = 2,
};

// The options that every command has. An empty text is an option that was not given.
struct GlobalOptions {
  std::string adapters;
  std::string config;
  std::string logLevel;
  bool isJson = false;
  std::string lockTimeout;  // of an update: how long it waits for the flash; see Duration.h
  std::string host;         // where to find the instances; empty: in this process
  // With a host only.
  std::string passwordFile;
  std::string caFile;
  std::string nameSpace;
};

struct Context {
  std::ostream& out;  // results; with --json one document, or nothing
  std::ostream& err;  // everything else
  GlobalOptions options;
  // The command that the arguments chose, ready to run.
  std::function<ExitStatus()> command;
};

}  // namespace cli

#endif  // ORVEX_CLI_CONTEXT_H_
