// The parameters of an operation (IPARAMVALUE), read by the types that the operation gives them.
//
// What is given wrong is refused with CIM_ERR_INVALID_PARAMETER, by the parameter's name: every
// function here throws that StatusFault. A parameter that is NULL counts as left out.

#ifndef ORVEX_WBEM_OPERATIONPARAMETERS_H_
#define ORVEX_WBEM_OPERATIONPARAMETERS_H_

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cimxml/NameSet.h"
#include "cimxml/Request.h"

namespace wbem {

class OperationParameters {
 public:
  // Refuses parameters that are none of those known, and one that comes twice. The request is the
  // caller's and outlives this.
  OperationParameters(const cimxml::Request& request, std::span<const std::string_view> known);

  [[nodiscard]] bool has(std::string_view name) const;

  [[nodiscard]] bool getBoolean(std::string_view name, bool whenMissing) const;
  [[nodiscard]] std::optional<std::uint32_t> getUint32(std::string_view name) const;
  [[nodiscard]] std::optional<std::string> getString(std::string_view name) const;
  [[nodiscard]] std::optional<std::vector<std::string>> getStrings(std::string_view name) const;
  // Returns the names of an array of texts.
  [[nodiscard]] std::optional<cimxml::NameSet> getNames(std::string_view name) const;
  [[nodiscard]] std::optional<std::string> getClassName(std::string_view name) const;

  [[nodiscard]] std::string demandString(std::string_view name) const;
  [[nodiscard]] std::string demandClassName(std::string_view name) const;
  // The name of an instance or, where that may be, of a class.
  [[nodiscard]] const cimxml::ObjectName& demandObjectName(std::string_view name) const;
  [[nodiscard]] const cimxml::ObjectName& demandInstanceName(std::string_view name) const;
  [[nodiscard]] const cimxml::InstanceValue& demandInstance(std::string_view name) const;

 private:
  // Returns null for a parameter that is left out.
  template <class Kind>
  const Kind* find(std::string_view name, const char* expected) const;
  template <class Kind>
  const Kind& demand(std::string_view name, const char* expected) const;

  const cimxml::Request& m_request;
};

}  // namespace wbem

#endif  // ORVEX_WBEM_OPERATIONPARAMETERS_H_
