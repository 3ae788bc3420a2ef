#include "cli/HostArgument.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

namespace cli {
namespace {

constexpr std::string_view kOption = "--host";
constexpr const char* kLocalAddress = "unix:";
constexpr std::string_view kBeginnings[] = {"http://", "https://", kLocalAddress};

bool beginsAsAddress(const std::string& text) {
  return std::any_of(std::begin(kBeginnings), std::end(kBeginnings),
                     [&text](std::string_view beginning) { return text.starts_with(beginning); });
}

}  // namespace

HostArgument completeHost(std::vector<std::string> arguments,
                          const std::function<Word(const std::string&)>& classify) {
  HostArgument complete;
  bool takesWords = false;
  const auto end = std::find(arguments.begin(), arguments.end(), "--");
  for (auto argument = arguments.begin(); argument != end; ++argument) {
    if (*argument != kOption) {
      takesWords = takesWords || classify(*argument) == Word::CommandWithWords;
      continue;
    }
    const auto next = std::next(argument);
    if (next == end || next->starts_with('-') || classify(*next) != Word::NoCommand) {
      *argument += std::string("=") + kLocalAddress;
    } else if (takesWords && !next->empty() && !beginsAsAddress(*next)) {
      *argument += std::string("=") + kLocalAddress;
      complete.follower = *next;
    } else {
      argument = next;
    }
  }
  complete.arguments = std::move(arguments);
  return complete;
}

}  // namespace cli
