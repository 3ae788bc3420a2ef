// A record of the audit is one line of as many fields as it has, whatever a client has in them, and
// shows on a terminal as it stands.

#include <string>
#include <string_view>

#include "Utils/Printable.h"
#include "daemon/Posix/SystemLogAudit.h"
#include "tests/fuzz/Fuzz.h"

namespace {

// Takes a field off the line: name="...". Returns its value as it is written.
std::string_view takeField(std::string_view& line, std::string_view name) {
  test::require(line.starts_with(name), "the fields have their order");
  line.remove_prefix(name.size());
  test::require(line.starts_with("=\""), "a value stands in quotes");
  line.remove_prefix(2);
  std::size_t end = 0;
  while (end < line.size() && line[end] != '"') {
    end += line[end] == '\\' ? 2 : 1;
  }
  test::require(end < line.size(), "a value ends");
  const std::string_view value = line.substr(0, end);
  line.remove_prefix(end + 1);
  line.remove_prefix(line.starts_with(' ') ? 1 : 0);
  return value;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const std::string line = quorveld::formatAudit(
      {{text, "192.0.2.7", std::nullopt}, "Login", text, text, {{"file", text}}});
  std::string_view rest = line;
  const std::string_view user = takeField(rest, "user");
  for (const char* const name : {"address", "role", "action", "result", "target"}) {
    static_cast<void>(takeField(rest, name));
  }
  test::require(takeField(rest, "file") == user, "a text is written in one way");
  test::require(rest.empty(), "there is nothing behind the fields");
  test::require(user.size() <= quorveld::SystemLogAudit::kMostBytes + 3, "a long text is cut");
  for (std::string_view left = line; !left.empty();
       left.remove_prefix(utils::lengthOfPrintable(left))) {
    test::require(utils::lengthOfPrintable(left) > 0, "each character shows as itself");
  }
  return 0;
}
