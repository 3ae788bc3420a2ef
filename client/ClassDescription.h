// A class as people look it up: its properties and methods, what each is, and what its values stand
// for. Plain values, whatever the other side was.

#ifndef ORVEX_CLIENT_CLASSDESCRIPTION_H_
#define ORVEX_CLIENT_CLASSDESCRIPTION_H_

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "client/Value.h"
#include "core/CimSchema.h"
#include "core/ClassTexts.h"

namespace client {

// Values as a ValueMap has them ("4", "32768..65535"), each with its name.
using NamedValues = std::vector<std::pair<std::string, std::string>>;

// A property or a parameter. What is not known is empty.
struct ElementDescription {
  std::string name;
  std::string type;  // "uint16[]"; of a reference the class that it leads to, "CIM_Job REF"
  bool isKey = false;
  bool isOutput = false;  // of a parameter
  std::string description;
  std::string units;
  NamedValues values;

  friend bool operator==(const ElementDescription&, const ElementDescription&) = default;
};

struct MethodDescription {
  std::string name;
  std::string type;  // of what it returns
  std::string description;
  NamedValues returns;
  std::vector<ElementDescription> parameters;

  friend bool operator==(const MethodDescription&, const MethodDescription&) = default;
};

struct ClassDescription {
  std::string name;
  std::string superclass;  // empty: none
  bool isAssociation = false;
  bool isAbstract = false;
  std::string version;
  std::string description;
  std::vector<ElementDescription> properties;  // inherited ones too
  std::vector<MethodDescription> methods;

  // Returns null when there is none of that name.
  [[nodiscard]] const ElementDescription* findProperty(std::string_view propertyName) const;

  friend bool operator==(const ClassDescription&, const ClassDescription&) = default;
};

// Returns the name of a number, of an array of numbers that of each; NULL for what has none.
[[nodiscard]] Value findNames(const NamedValues& values, const Value& value);

// Returns the type of an element as a description has it.
[[nodiscard]] std::string toTypeText(const std::string& type, bool isArray,
                                     const std::string& referenceClass);

[[nodiscard]] ClassDescription describeClass(const core::CimSchema& schema,
                                             const core::ClassTexts& texts,
                                             const core::ClassDeclaration& declaration);

}  // namespace client

#endif  // ORVEX_CLIENT_CLASSDESCRIPTION_H_
