// Finding associations: which lead to an object, and what is at their other ends.
//
// Who visits instances holds the broker's request. Those that a visitor gets are valid while it
// runs: the next enumeration may end them.

#ifndef ORVEX_WBEM_ASSOCIATIONS_H_
#define ORVEX_WBEM_ASSOCIATIONS_H_

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/CimPropertyRef.h"
#include "wbem/OperationCall.h"

namespace wbem {

// Which associations and which ends count. A null class or an empty name is any.
struct AssociationFilter {
  const core::ClassDeclaration* association = nullptr;  // it or a subclass
  const core::ClassDeclaration* result = nullptr;       // of the other end: it or a subclass
  std::string role;                                     // the reference that leads to the object
  std::string resultRole;                               // the reference at the other end
};

// Reads the filter of an operation that asks for what is associated with an object, and of one that
// asks for the associations themselves. Throw StatusFault (CIM_ERR_INVALID_PARAMETER) for a class
// that there is not.
[[nodiscard]] AssociationFilter readAssociatorFilter(const OperationCall& call);
[[nodiscard]] AssociationFilter readReferenceFilter(const OperationCall& call);

// A class of associations, and those of its references that may lead to the object in question.
struct AssociationRoles {
  const ServedClass* served = nullptr;
  std::vector<const core::PropertyDeclaration*> roles;
};

// Returns the served classes whose associations may lead to an instance of the class.
[[nodiscard]] std::vector<AssociationRoles> findRoles(const OperationCall& call,
                                                      const core::ClassDeclaration& source,
                                                      const AssociationFilter& filter);

// An association's reference that leads to the object in question.
struct ReferenceHit {
  const ServedClass& served;
  core::CimInstance& association;
  const core::PropertyDeclaration& role;
};

// Calls visit(hit) for each reference that leads to the instance of that name; an association that
// leads there twice comes twice. Throws what a provider throws.
void visitReferences(const std::vector<AssociationRoles>& associations,
                     const cimxml::ObjectName& object,
                     const std::function<void(const ReferenceHit&)>& visit);

// Calls visit(reference) for each other end of the association that the filter lets through; its
// class is looked at by isResult().
void visitOtherEnds(const ReferenceHit& hit, const AssociationFilter& filter,
                    const std::function<void(const core::CimPropertyRef&)>& visit);

// Returns whether an object of the class is one that the filter asks for.
[[nodiscard]] bool isResult(const Namespaces& namespaces, const AssociationFilter& filter,
                            const std::string& className);

// The same among declarations: visit(association, role) for each reference of an association's
// class that an instance of the class may be at.
void visitClassReferences(const core::CimSchema& schema, const core::ClassDeclaration& source,
                          const AssociationFilter& filter,
                          const std::function<void(const core::ClassDeclaration&,
                                                   const core::PropertyDeclaration&)>& visit);

}  // namespace wbem

#endif  // ORVEX_WBEM_ASSOCIATIONS_H_
