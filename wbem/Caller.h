// Who sends a request, and what he may do.

#ifndef ORVEX_WBEM_CALLER_H_
#define ORVEX_WBEM_CALLER_H_

#include <optional>
#include <string>

namespace wbem {

enum class Role {
  Reader,    // may read
  Operator,  // may also invoke methods and modify instances
};

struct Caller {
  std::string user;          // empty where nobody has to log in
  std::string address;       // "192.0.2.7", of the peer
  std::optional<Role> role;  // null: of who may do nothing, such as a login that was refused
};

}  // namespace wbem

#endif  // ORVEX_WBEM_CALLER_H_
