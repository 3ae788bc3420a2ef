// What an update is for: a port, an adapter, or the object path of either.

#ifndef ORVEX_CLI_TARGET_H_
#define ORVEX_CLI_TARGET_H_

#include <string>

#include "cli/Connection.h"

namespace cli {

enum class TargetKind { Port, Adapter, ObjectPath, Unknown };

// What a text names, before anybody asks whether it is there.
struct TargetName {
  TargetKind kind;
  std::string text;  // an identifier in its canonical form; otherwise as it was given
};

// Reads "0000:03:00.0", "0000:03:00" or an object path.
[[nodiscard]] TargetName parseTarget(const std::string& text);

struct Target {
  std::string path;   // of the instance to update
  std::string label;  // how messages call it: its identifier where it has one, else the path
};

// Finds the instance that a text names. Throws Fault, which lists the adapters and ports that are
// there.
[[nodiscard]] Target findTarget(Connection& connection, const std::string& text);

}  // namespace cli

#endif  // ORVEX_CLI_TARGET_H_
