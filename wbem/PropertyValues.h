// Typed values out of the values of a message: new values of properties, and arguments of methods.

#ifndef ORVEX_WBEM_PROPERTYVALUES_H_
#define ORVEX_WBEM_PROPERTYVALUES_H_

#include <memory>
#include <string>

#include "cimxml/Request.h"
#include "core/CimProperty.h"
#include "wbem/Namespaces.h"
#include "wbem/Status.h"

namespace wbem {

struct ValueContext {
  std::string owner;  // the class or the method, for texts
  Status whenWrong;   // what a value of another type is refused with
  const Namespaces& namespaces;
};

// Throws StatusFault when the message gives a type, and another one. Of an array it gives that of
// the elements.
void demandType(const ValueContext& context, const std::string& name, core::CimType type,
                const std::string& given);

// Returns a property without an owner that holds the value. A reference holds the object path as
// agents write it; a host in it is dropped, and a namespace, which must be one of this server.
// Throws StatusFault: with the context's status for a value that is none of the type, and with
// CIM_ERR_INVALID_PARAMETER for a reference to another namespace.
[[nodiscard]] std::unique_ptr<core::CimProperty> makeProperty(const ValueContext& context,
                                                              const std::string& name,
                                                              core::CimType type,
                                                              const cimxml::Value& value);

}  // namespace wbem

#endif  // ORVEX_WBEM_PROPERTYVALUES_H_
