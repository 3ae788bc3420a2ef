// A request of a CIM client (DSP0201: a SIMPLEREQ), as the server reads it.

#ifndef ORVEX_CIMXML_REQUEST_H_
#define ORVEX_CIMXML_REQUEST_H_

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "cimxml/ObjectName.h"
#include "cimxml/RequestFault.h"

namespace cimxml {

using StringArray = std::vector<std::optional<std::string>>;  // nullopt: VALUE.NULL

// A property of an INSTANCE.
struct PropertyValue;

// An INSTANCE, with the name that stands beside it where there is one (VALUE.NAMEDINSTANCE).
struct InstanceValue {
  ObjectName name;  // the class name alone where no name stands beside it
  std::vector<PropertyValue> properties;
};

// NULL, VALUE, VALUE.ARRAY, a name (CLASSNAME, INSTANCENAME, VALUE.REFERENCE), VALUE.REFARRAY, an
// instance. Texts are as the client sent them, entities resolved. In an array of names, one without
// a class name stands for VALUE.NULL. A CLASS and a QUALIFIER.DECLARATION are read as NULL, since
// no operation that is served takes one.
using Value = std::variant<std::monostate, std::string, StringArray, ObjectName,
                           std::vector<ObjectName>, InstanceValue>;

struct PropertyValue {
  std::string name;
  std::string type;  // "uint16"; "reference" for PROPERTY.REFERENCE; empty where none is given
  bool isArray = false;
  Value value;
};

// An IPARAMVALUE, or a PARAMVALUE.
struct Parameter {
  std::string name;
  std::string type;  // PARAMTYPE as it stands; empty where there is none
  Value value;
};

struct Request {
  std::string messageId;
  bool isExtrinsic = false;  // METHODCALL, else IMETHODCALL
  std::string name;          // of the operation or the method
  std::string nameSpace;     // "root/interop"
  ObjectName target;         // of a method: the instance or the class; its own namespace is empty
  std::vector<Parameter> parameters;

  // Returns null where there is none of that name; names are compared without regard to case.
  [[nodiscard]] const Parameter* find(std::string_view parameterName) const;
};

// Reads the body of a request. The buffer is used as scratch space: its content is gone afterwards.
// Elements are taken in the order of DSP0201; attributes that mean nothing here are passed over. No
// document type declaration with content and no entity beyond XML's own five is taken. Throws
// RequestFault; std::bad_alloc.
[[nodiscard]] Request parseRequest(std::string& body);

}  // namespace cimxml

#endif  // ORVEX_CIMXML_REQUEST_H_
