// CIM instances as they were when they were looked at: plain values, valid for good, wherever they
// came from.

#ifndef ORVEX_CLIENT_SNAPSHOT_H_
#define ORVEX_CLIENT_SNAPSHOT_H_

#include <string>
#include <string_view>
#include <vector>

#include "client/Value.h"
#include "core/CimInstance.h"
#include "core/CimProperty.h"

namespace client {

struct PropertySnapshot {
  enum class Kind {
    Value,  // a number, a truth value, a text, an embedded instance, or an array of these
    Datetime,
    Reference,
  };

  std::string name;
  Kind kind = Kind::Value;
  Value value;  // a text of a date-time and of a reference
};

using Properties = std::vector<PropertySnapshot>;

struct InstanceSnapshot {
  std::string className;
  std::string path;  // its object path, as core::CimInstance::getPath prints it
  Properties properties;

  // Returns the property; null where there is none.
  [[nodiscard]] const PropertySnapshot* find(std::string_view propertyName) const;

  // Returns the value of a property; `missing` where it is NULL, of another type or not there.
  template <class Type>
  [[nodiscard]] Type value(std::string_view propertyName, Type missing = {}) const {
    const PropertySnapshot* const property = find(propertyName);
    return property != nullptr ? property->value.as<Type>().value_or(missing) : missing;
  }
};

using Instances = std::vector<InstanceSnapshot>;

// The caller holds the broker's request while it passes what the broker handed out.
[[nodiscard]] PropertySnapshot snapshotOf(const core::CimProperty& property);
[[nodiscard]] Properties snapshotOf(core::CimPropertyList& properties);
[[nodiscard]] InstanceSnapshot snapshotOf(core::CimInstance& instance);

enum class NullProperties { Left, Shown };

// Returns the properties as an object, in their order.
[[nodiscard]] Value toValue(const Properties& properties, NullProperties nulls);
// Returns {"path": "...", "properties": {...}}.
[[nodiscard]] Value toValue(const InstanceSnapshot& instance, NullProperties nulls);

}  // namespace client

#endif  // ORVEX_CLIENT_SNAPSHOT_H_
