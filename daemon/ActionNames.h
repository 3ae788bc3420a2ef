// What the names mean that clients give to what they do. A name in another case is the same, and
// what no class knows is no name at all: a client may invent as many as it likes.
//
// Never changes; any thread may call.

#ifndef ORVEX_DAEMON_ACTIONNAMES_H_
#define ORVEX_DAEMON_ACTIONNAMES_H_

#include <set>
#include <string>

#include "core/CimSchema.h"

namespace quorveld {

class ActionNames {
 public:
  // Knows the methods of the schema's classes, and the operations that the server offers.
  explicit ActionNames(const core::CimSchema& schema);

  // Returns the name as it was declared, empty for one that is not.
  [[nodiscard]] std::string find(const std::string& action) const;

 private:
  std::set<std::string, core::NameLess> m_methods;
};

}  // namespace quorveld

#endif  // ORVEX_DAEMON_ACTIONNAMES_H_
