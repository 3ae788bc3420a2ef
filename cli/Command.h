// A command of the program, declared to the parser of its arguments, which stays behind this
// header.
//
// What a command refers to (texts, values) outlives the parser; names are those of the help.

#ifndef ORVEX_CLI_COMMAND_H_
#define ORVEX_CLI_COMMAND_H_

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "host/ParserNames.h"

namespace cli {

class Command {
 public:
  // Returns what is wrong with the text of an argument, empty when nothing is.
  using Check = std::string (*)(const std::string& text);

  // A word of the command line: "--name", or "NAME" for one that stands by itself.
  struct Argument {
    const char* name = "";
    const char* description = "";
    const char* valueName = "";  // what stands behind an option's name in the help
    bool isRequired = false;
    Check check = nullptr;
  };

  // Adds a command to the program, or to another command.
  Command(CLI::App& parent, const char* name, const char* description);
  Command(Command& parent, const char* name, const char* description);

  void add(const Argument& argument, std::string& value);
  void add(const Argument& argument, std::vector<std::string>& values);
  void add(const Argument& argument, std::uint64_t& value);
  // Takes a number from `least` to `most`.
  void add(const Argument& argument, unsigned& value, unsigned least, unsigned most);
  void addFlag(const char* name, const char* description, bool& value);

  // Leave the command, or one of its options, out of the help where the program speaks to no hosts.
  void showOnlyWithHosts();
  void showOnlyWithHosts(const char* option);

  // Has no more than one of the commands below this one be named.
  void takeOneCommandAtMost();
  void setFooter(const char* text);
  // Runs when the arguments choose this command, behind that of a command below. May call refuse().
  void onChosen(std::function<void()> run);

  // Ends the parsing of the arguments as wrong usage, for this reason.
  [[noreturn]] static void refuse(const char* reason);

 private:
  CLI::App* m_app;
};

}  // namespace cli

#endif  // ORVEX_CLI_COMMAND_H_
