// What a CIM class is declared to be: its superclass, its properties and its methods, as a front
// end shows them to clients. Plain data; the instances themselves are core::CimInstance.
//
// The names of classes, properties, methods and parameters are compared without regard to the case
// of ASCII letters (DSP0004) and kept as they were declared.

#ifndef ORVEX_CORE_CLASSDECLARATION_H_
#define ORVEX_CORE_CLASSDECLARATION_H_

#include <string>
#include <string_view>
#include <vector>

#include "Utils/Ascii.h"
#include "Utils/Export.h"
#include "core/CimProperty.h"

namespace core {

struct PropertyDeclaration {
  std::string name;
  CimType type = kCimString;
  bool isKey = false;
  std::string referenceClass;  // of a reference: the class that it leads to; else empty
  std::string origin;          // the class that declared it last

  friend bool operator==(const PropertyDeclaration&, const PropertyDeclaration&) = default;
};

enum class ParameterDirection {
  In,
  Out,
  // Out, but handed out beside the output arguments: the job that the method created (see
  // CimInstance::Method).
  Job,
};

struct ParameterDeclaration {
  std::string name;
  CimType type = kCimString;
  ParameterDirection direction = ParameterDirection::In;
  std::string referenceClass;  // as of a property

  friend bool operator==(const ParameterDeclaration&, const ParameterDeclaration&) = default;
};

struct MethodDeclaration {
  std::string name;
  CimType returnType = kCimUint32;
  std::vector<ParameterDeclaration> parameters;  // in their order
  std::string origin;                            // the class that declared it last

  friend bool operator==(const MethodDeclaration&, const MethodDeclaration&) = default;
};

struct ORVEX_CORE_API ClassDeclaration {
  std::string name;
  std::string superclass;  // empty: none
  bool isAssociation = false;
  std::vector<PropertyDeclaration> properties;  // inherited ones too, in the order of the instances
  std::vector<MethodDeclaration> methods;       // inherited ones first

  // Return null when there is none of that name.
  [[nodiscard]] const PropertyDeclaration* findProperty(std::string_view propertyName) const;
  [[nodiscard]] const MethodDeclaration* findMethod(std::string_view methodName) const;

  friend bool operator==(const ClassDeclaration&, const ClassDeclaration&) = default;
};

// How names are ordered and compared.
using NameLess = utils::LessIgnoringCase;

[[nodiscard]] constexpr bool isSameName(std::string_view left, std::string_view right) noexcept {
  return utils::isSameIgnoringCase(left, right);
}

[[nodiscard]] constexpr bool isArray(CimType type) {
  return (type & 1U) != 0;
}

// Returns the name of the type, for example "uint16"; of an array, that of its elements. A
// reference is a "reference".
[[nodiscard]] ORVEX_CORE_API std::string_view getTypeName(CimType type);

}  // namespace core

#endif  // ORVEX_CORE_CLASSDECLARATION_H_
