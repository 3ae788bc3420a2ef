// The grammar of object paths, for whoever reads one: core::CimPath, and the names in messages.
//
//   [NAMESPACE:]CLASS.KEY=VALUE[,KEY=VALUE ...]
//
// Separators count outside double quotes alone; a backslash before a double quote keeps it from
// closing. The names of classes and keys are ASCII letters, digits and underscores, no digit first.
// A key is given once; names that differ by case are two.
//
// What is read are views of the text, which outlives them. No state; any thread may call. The work
// grows with the length of the text and the logarithm of the number of its keys.

#ifndef ORVEX_CORE_OBJECTPATHREADER_H_
#define ORVEX_CORE_OBJECTPATHREADER_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Utils/Export.h"

namespace core {

struct ObjectPathKey {
  std::string_view name;
  std::string_view value;  // as it stands, with its quotes; never empty
};

// What a text says, as far as it could be read.
struct ObjectPathParts {
  std::optional<std::string_view> nameSpace;  // where one is given; it may be empty
  std::string_view modelPath;                 // what follows the namespace
  std::string_view className;
  bool isInstance = false;  // else a class, without keys
  std::vector<ObjectPathKey> keys;
};

// Why a text is no object path.
struct ObjectPathProblem {
  const char* what;                          // lives as long as the program
  std::optional<std::string_view> offender;  // the part of the text that is at fault

  // Returns "WHAT: 'OFFENDER'".
  [[nodiscard]] ORVEX_CORE_API std::string describe() const;
};

enum class ObjectPathKind {
  Instance,         // has keys
  InstanceOrClass,  // a class name alone is a path too
};

// Reads the text into `parts`, which are new. Returns nothing when it is a path, else the first
// problem; the namespace and the keys in front of it are read by then. Throws nothing of its own:
// there are readers who try every text.
[[nodiscard]] ORVEX_CORE_API std::optional<ObjectPathProblem> readObjectPath(
    std::string_view text, ObjectPathKind kind, ObjectPathParts& parts);

}  // namespace core

#endif  // ORVEX_CORE_OBJECTPATHREADER_H_
