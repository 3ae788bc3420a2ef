// What the program hands to a command, and how a command ends.

#ifndef ORVEX_CLI_CONTEXT_H_
#define ORVEX_CLI_CONTEXT_H_

#include <exception>
#include <functional>
#include <ostream>
#include <string>
#include <utility>

namespace cli {

enum class ExitStatus : int {
  Done = 0,
  Failed = 1,  // refused by the agent, or failed
  Usage = 2,
};

// Ends a command: what() says what happened, to what, and what to do next.
class Fault : public std::exception {
 public:
  explicit Fault(std::string text, ExitStatus status = ExitStatus::Failed)
      : m_text(std::move(text)), m_status(status) {}

  [[nodiscard]] const char* what() const noexcept override { return m_text.c_str(); }
  [[nodiscard]] ExitStatus status() const { return m_status; }

 private:
  std::string m_text;
  ExitStatus m_status;
};

// A fault that may be over a moment later: nobody answers, or somebody is too busy to.
class PassingFault final : public Fault {
 public:
  using Fault::Fault;
};

// The options that every command has. An empty text is an option that was not given.
struct GlobalOptions {
  std::string adapters;
  std::string config;
  std::string logLevel;
  bool isJson = false;
  std::string host;  // where to find the instances; empty: in this process
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
