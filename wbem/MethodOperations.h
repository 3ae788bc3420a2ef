// Invoking extrinsic methods (DSP0200, 5.4).

#ifndef ORVEX_WBEM_METHODOPERATIONS_H_
#define ORVEX_WBEM_METHODOPERATIONS_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Os/FileAhead.h"
#include "cimxml/Request.h"
#include "core/CimBroker.h"
#include "core/OwningPropertyList.h"
#include "wbem/Installation.h"
#include "wbem/Namespaces.h"

namespace wbem {

// The arguments of a call as the method's declaration types them. For one thread.
class MethodArguments {
 public:
  // An argument that the request lacks is left out, one that is NULL is there and null. Throws
  // StatusFault (CIM_ERR_INVALID_PARAMETER), which names the argument.
  MethodArguments(const core::MethodDeclaration& method,
                  const std::vector<cimxml::Parameter>& given, const Namespaces& namespaces);

  [[nodiscard]] core::CimPropertyList& in() { return m_in.list(); }
  // The output arguments of the declaration, NULL until the method sets them.
  [[nodiscard]] core::CimPropertyList& out() { return m_out.list(); }

 private:
  core::OwningPropertyList m_in;
  core::OwningPropertyList m_out;
};

// What became of a call: as much of it as is known when it fails.
struct Invocation {
  std::optional<std::uint32_t> returnValue;
  std::string job;                           // its object path; empty for none
  std::optional<Installation> installation;  // of a method that installs
  std::unique_ptr<os::FileAhead> file;       // that the method reads; null for none
};

// Invokes the method that the request names and appends its return value and its output arguments;
// those that stay NULL are left out, since there are clients that take a NULL for the end of the
// message. Reads the file that the method reads, has the agents look for those that its arguments
// stand for, and then holds the broker's request. Throws StatusFault, and what the method throws.
void invokeMethod(const cimxml::Request& request, core::CimBroker& broker,
                  const Namespaces& namespaces, std::string& out, Invocation& invocation);

}  // namespace wbem

#endif  // ORVEX_WBEM_METHODOPERATIONS_H_
