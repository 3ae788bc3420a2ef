// An answer of a CIM server (DSP0201: a SIMPLERSP), as a client reads it. Plain values.

#ifndef ORVEX_CIMXML_RESPONSE_H_
#define ORVEX_CIMXML_RESPONSE_H_

#include <exception>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cimxml/ObjectName.h"
#include "cimxml/Request.h"

namespace cimxml {

// What a CLASS says about itself, its properties and its methods.
struct ClassValue {
  struct Qualifier {
    std::string name;
    StringArray values;  // of one that is no array the one, none for NULL
  };

  // A property, or a parameter of a method.
  struct Property {
    std::string name;
    std::string type;  // "uint16"; "reference" for PROPERTY.REFERENCE
    bool isArray = false;
    std::string referenceClass = {};  // of a reference, where one is fixed
    std::vector<Qualifier> qualifiers = {};
  };

  struct Method {
    std::string name;
    std::string type;  // of what it returns
    std::vector<Qualifier> qualifiers;
    std::vector<Property> parameters;
  };

  std::string name;
  std::string superclass;  // empty: none
  std::vector<Qualifier> qualifiers;
  std::vector<Property> properties;
  std::vector<Method> methods;
};

struct ErrorValue {
  unsigned code = 0;
  std::string description;
};

struct Response {
  std::string messageId;
  bool isExtrinsic = false;  // METHODRESPONSE, else IMETHODRESPONSE
  std::string name;          // of the operation or the method
  std::optional<ErrorValue> error;

  // Of an operation: what its IRETURNVALUE holds, each kind in the order of the message. Paths and
  // the names beside instances keep host and namespace.
  std::vector<InstanceValue> instances;
  std::vector<ObjectName> names;
  std::vector<ClassValue> classes;

  // Of a method.
  std::optional<std::string> returnValue;
  std::vector<Parameter> outputs;
};

// A message that is no answer.
class ResponseFault final : public std::exception {
 public:
  explicit ResponseFault(std::string text) : m_text(std::move(text)) {}
  [[nodiscard]] const char* what() const noexcept override { return m_text.c_str(); }

 private:
  std::string m_text;
};

// Reads the body of an answer. The buffer is used as scratch space: its content is gone afterwards.
// Elements that are not known are passed over. Throws ResponseFault; std::bad_alloc.
[[nodiscard]] Response parseResponse(std::string& body);

}  // namespace cimxml

#endif  // ORVEX_CIMXML_RESPONSE_H_
