// What an update is for: a port, an adapter, or the object path of either.

#ifndef ORVEX_CLIENT_TARGET_H_
#define ORVEX_CLIENT_TARGET_H_

#include <string>

#include "client/Connection.h"

namespace client {

enum class TargetKind { Port, Adapter, ObjectPath, Unknown };

// What a text names, before anybody asks whether it is there.
struct TargetName {
  TargetKind kind;
  std::string text;   // an identifier in its canonical form; otherwise as it was given
  std::string given;  // as messages repeat it
};

struct Target {
  std::string path;   // of the instance to update
  std::string label;  // how messages call it: its identifier where it has one, else the path
};

// Finds the instance of that name. Throws Fault, which lists the adapters and ports that are
// there.
[[nodiscard]] Target findTarget(Connection& connection, const TargetName& name);

}  // namespace client

#endif  // ORVEX_CLIENT_TARGET_H_
