#include "daemon/ActionNames.h"

#include "wbem/Operations.h"

namespace quorveld {

ActionNames::ActionNames(const core::CimSchema& schema) {
  for (const core::ClassDeclaration* declaration : schema.getDescendants("")) {
    for (const core::MethodDeclaration& method : declaration->methods) {
      m_methods.insert(method.name);
    }
  }
}

std::string ActionNames::find(const std::string& action) const {
  const auto method = m_methods.find(action);
  if (method != m_methods.end()) {
    return *method;
  }
  const wbem::Operation* const operation = wbem::findOperation(action);
  return operation != nullptr ? std::string(operation->name) : std::string();
}

}  // namespace quorveld
