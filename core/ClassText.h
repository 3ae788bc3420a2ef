// What there is to say of a class, for the qualifiers of its declaration and for people: plain
// data, which stand as constant tables beside the classes.
//
// A table has a row for a property, a method or a parameter in the class that declares it; a class
// that declares it anew has a row only where it says something else. What a row leaves empty is
// that of the nearest class above that says it.

#ifndef ORVEX_CORE_CLASSTEXT_H_
#define ORVEX_CORE_CLASSTEXT_H_

#include <span>
#include <string_view>

namespace core {

// A value and what it stands for. The value is written as in a ValueMap (DSP0004): a number, a
// range
// ("5..9", "32768.."), or ".." for all that no other row has; of a text, the text itself.
struct ValueName {
  std::string_view value;
  std::string_view name;
};

// A unit, in words and as a programmatic unit (DSP0004).
struct UnitText {
  std::string_view words;
  std::string_view programmatic;
};

inline constexpr UnitText kPercent{"Percent", "percent"};
inline constexpr UnitText kBytes{"Bytes", "byte"};
inline constexpr UnitText kBitsPerSecond{"Bits per Second", "bit / second"};
inline constexpr UnitText kSeconds{"Seconds", "second"};

// A property or a parameter.
struct ElementText {
  std::string_view name;
  std::string_view description;
  std::span<const ValueName> values = {};
  UnitText unit = {};
  bool isWritable = false;  // a client may modify the property
};

struct MethodText {
  std::string_view name;
  std::string_view description;
  std::span<const ElementText> parameters = {};
  std::span<const ValueName> returns = {};
};

struct ClassText {
  std::string_view name;
  std::string_view description;
  std::span<const ElementText> properties = {};
  std::span<const MethodText> methods = {};
  std::string_view version = {};  // of the schema that the class is taken from
  bool isAbstract = false;        // no instances of it but those of its subclasses
};

}  // namespace core

#endif  // ORVEX_CORE_CLASSTEXT_H_
