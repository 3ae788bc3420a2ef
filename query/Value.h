// What a query compares: the values of properties and the literals of its text. Plain values.

#ifndef ORVEX_QUERY_VALUE_H_
#define ORVEX_QUERY_VALUE_H_

#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "Utils/Datetime.h"

namespace query {

class InstanceView;
struct Value;

// A reference, as an object path (see core/ObjectPathReader.h).
struct ObjectPath {
  std::string text;
};

using Array = std::vector<Value>;
using EmbeddedInstance = std::shared_ptr<const InstanceView>;

// Whole numbers are unsigned where they can be. std::monostate is NULL; so is an embedded instance
// that is null.
struct Value {
  std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double, std::string,
               utils::Datetime, ObjectPath, Array, EmbeddedInstance>
      held;

  [[nodiscard]] bool isNull() const {
    const auto* instance = std::get_if<EmbeddedInstance>(&held);
    return std::holds_alternative<std::monostate>(held) ||
           (instance != nullptr && *instance == nullptr);
  }
};

}  // namespace query

#endif  // ORVEX_QUERY_VALUE_H_
