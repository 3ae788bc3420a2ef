// CIM instances as they were when they were looked at: plain values, valid for good, wherever they
// came from.

#ifndef ORVEX_CLI_SNAPSHOT_H_
#define ORVEX_CLI_SNAPSHOT_H_

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace cli {

// Keeps the order in which fields are added.
using Json = nlohmann::ordered_json;

struct PropertySnapshot {
  enum class Kind {
    Value,  // a number, a truth value, a text, or an array of these
    Datetime,
    Reference,
  };

  std::string name;
  Kind kind = Kind::Value;
  Json value;  // null: NULL; a text of a date-time and of a reference
};

using Properties = std::vector<PropertySnapshot>;

struct InstanceSnapshot {
  std::string className;
  std::string path;  // its object path, as core::CimInstance::getPath prints it
  Properties properties;

  // Returns the value of a property; `missing` where it is NULL, of another type or not there.
  template <class Type>
  [[nodiscard]] Type value(std::string_view propertyName, Type missing = {}) const {
    const auto found = std::find_if(
        properties.begin(), properties.end(),
        [propertyName](const PropertySnapshot& property) { return property.name == propertyName; });
    if (found == properties.end() || found->value.is_null()) {
      return missing;
    }
    if (std::is_integral_v<Type> && found->value.is_number_float()) {
      return missing;
    }
    try {
      return found->value.template get<Type>();
    } catch (const Json::type_error&) {
      return missing;
    }
  }
};

using Instances = std::vector<InstanceSnapshot>;

}  // namespace cli

#endif  // ORVEX_CLI_SNAPSHOT_H_
