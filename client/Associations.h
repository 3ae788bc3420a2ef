// What refers to an instance, and what an instance refers to.

#ifndef ORVEX_CLIENT_ASSOCIATIONS_H_
#define ORVEX_CLIENT_ASSOCIATIONS_H_

#include <string>
#include <vector>

#include "client/Connection.h"
#include "core/CimPath.h"

namespace client {

// A reference property that has a value.
struct Reference {
  std::string role;  // name of the property
  std::string path;  // where it leads
};

// One reference to the instance in question: an association whose two references lead there comes
// twice.
struct Association {
  std::string className;
  std::string path;
  std::string role;               // of the reference that leads to the instance
  std::vector<Reference> others;  // its other references
};

struct ObjectReferences {
  std::string path;                       // of the instance in question
  std::vector<Reference> own;             // those of the instance itself, which has them as an
                                          // association
  std::vector<Association> associations;  // by class in alphabetical order, then as served
};

// Throws as demandInstance and Connection::findReferencing.
[[nodiscard]] ObjectReferences findReferences(Connection& connection, const core::CimPath& path);

}  // namespace client

#endif  // ORVEX_CLIENT_ASSOCIATIONS_H_
