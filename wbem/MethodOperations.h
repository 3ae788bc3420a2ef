// Invoking extrinsic methods (DSP0200, 5.4).

#ifndef ORVEX_WBEM_METHODOPERATIONS_H_
#define ORVEX_WBEM_METHODOPERATIONS_H_

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "cimxml/Request.h"
#include "core/CimBroker.h"
#include "core/CimPropertyList.h"
#include "wbem/Namespaces.h"

namespace wbem {

// The arguments of a call as the method's declaration types them. For one thread.
class MethodArguments {
 public:
  // An argument that the request lacks is left out, one that is NULL is there and null. Throws
  // StatusFault (CIM_ERR_INVALID_PARAMETER), which names the argument.
  MethodArguments(const core::MethodDeclaration& method,
                  const std::vector<cimxml::Parameter>& given, const Namespaces& namespaces);
  MethodArguments(const MethodArguments&) = delete;
  MethodArguments& operator=(const MethodArguments&) = delete;
  ~MethodArguments();

  [[nodiscard]] core::CimPropertyList& in() { return m_in; }
  // The output arguments of the declaration, NULL until the method sets them.
  [[nodiscard]] core::CimPropertyList& out() { return m_out; }

 private:
  void add(core::CimPropertyList& list, std::unique_ptr<core::CimProperty> argument);

  std::vector<std::unique_ptr<core::CimProperty>> m_arguments;
  core::CimPropertyList m_in;
  core::CimPropertyList m_out;
};

// Invokes the method that the request names and appends its return value and its output arguments;
// those that stay NULL are left out, since there are clients that take a NULL for the end of the
// message. Returns the return value. Holds the broker's request. Throws StatusFault, and what the
// method throws.
[[nodiscard]] std::uint32_t invokeMethod(const cimxml::Request& request, core::CimBroker& broker,
                                         const Namespaces& namespaces, std::string& out);

}  // namespace wbem

#endif  // ORVEX_WBEM_METHODOPERATIONS_H_
