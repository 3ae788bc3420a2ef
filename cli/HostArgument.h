// The option --host as a command line has it, where its address may be left out.
//
//   --host=ADDRESS  the address, whatever it looks like
//   --host ADDRESS  the same for a text that begins as addresses do, or that can be nothing else,
//                   since no command stands in front of it that takes words of its own
//   --host          else: the service of this machine, and what follows is the command's
//
// Pure.

#ifndef ORVEX_CLI_HOSTARGUMENT_H_
#define ORVEX_CLI_HOSTARGUMENT_H_

#include <functional>
#include <string>
#include <vector>

namespace cli {

struct HostArgument {
  // With an address behind each --host.
  std::vector<std::string> arguments;
  // What follows a --host without one, and might have been meant for one; empty where nothing does.
  std::string follower;
};

// What a word is to the program.
enum class Word {
  NoCommand,
  Command,
  CommandWithWords,  // takes others behind it
};

[[nodiscard]] HostArgument completeHost(std::vector<std::string> arguments,
                                        const std::function<Word(const std::string&)>& classify);

}  // namespace cli

#endif  // ORVEX_CLI_HOSTARGUMENT_H_
