// The name of a CIM object as a message carries it (DSP0201: CLASSNAME, INSTANCENAME and the paths
// that hold them). Plain values.

#ifndef ORVEX_CIMXML_OBJECTNAME_H_
#define ORVEX_CIMXML_OBJECTNAME_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cimxml {

struct ObjectName;

struct KeyBinding {
  enum class Kind { String, Numeric, Boolean, Reference };

  std::string name;  // empty for the one key of an instance name that gives a value alone
  Kind kind = Kind::String;
  std::string text;                   // of a reference: empty
  std::vector<ObjectName> reference;  // of a reference: the one name that it holds

  friend bool operator==(const KeyBinding&, const KeyBinding&) = default;
};

struct ObjectName {
  std::string host;       // empty: none was given
  std::string nameSpace;  // "root/interop"; empty: none was given
  std::string className;
  bool isInstance = false;       // else a class, without keys
  std::vector<KeyBinding> keys;  // in the order of the message

  friend bool operator==(const ObjectName&, const ObjectName&) = default;
};

// Returns the object path that core::CimPath parses and core::CimInstance::getPath prints:
// "Class.Key=Value,...", strings and references quoted, truth values 1 and 0; host and namespace
// are left out. A number that could not stand bare is quoted too.
[[nodiscard]] std::string toObjectPath(const ObjectName& name);

// Returns the path as people are told it, in an error or in a record: no more than its first
// kibibyte, since a name in a message may be as long as the message, and its path longer by the
// escapes of its quotes.
[[nodiscard]] std::string describeObject(const ObjectName& name);

// Reads such a path, "[NAMESPACE:]CLASS.KEY=VALUE,...", or the name of a class. A value in quotes
// is a string, or a reference where it reads as a path of an instance itself (a client that knows
// the class corrects that by its declaration); TRUE and FALSE are booleans, the rest is numeric.
// Throws utils::ESyntaxError.
[[nodiscard]] ObjectName parseObjectPath(const std::string& path);
// The same for a text that need not be a path: returns nothing where it is none.
[[nodiscard]] std::optional<ObjectName> readObjectPath(std::string_view text);

}  // namespace cimxml

#endif  // ORVEX_CIMXML_OBJECTNAME_H_
