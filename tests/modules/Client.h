// What a management client learns from the broker: copies of instances, which stay as they were.
//
// Each call holds the broker's request for its length; any thread may call.

#ifndef ORVEX_TESTS_MODULES_CLIENT_H_
#define ORVEX_TESTS_MODULES_CLIENT_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace test {

struct PropertyReport {
  std::string name;
  std::uint32_t type = 0;  // a core::CimType
  bool isKey = false;
  bool isNull = false;
  // As the command line prints it; a string as it is, empty for NULL.
  std::string value;
};

struct InstanceReport {
  std::string path;
  std::vector<PropertyReport> properties;

  // Returns the value of the property. Throws std::runtime_error when there is none.
  [[nodiscard]] const std::string& get(const std::string& name) const;
  // Returns the values of all references.
  [[nodiscard]] std::vector<std::string> references() const;
};

// Returns the numbers of a value as it is reported, "7" or "{2, 3}".
[[nodiscard]] std::vector<std::int64_t> numbersIn(const std::string& value);

// Returns the names of the classes, in the order of the agents, each once.
[[nodiscard]] std::vector<std::string> servedClasses();

// Returns the instances of the class, in the broker's order.
[[nodiscard]] std::vector<InstanceReport> enumerate(const std::string& className);

// Returns the value that the property has in each instance of the class.
[[nodiscard]] std::vector<std::string> enumerate(const std::string& className,
                                                 const std::string& property);

// Returns the instance at the path, nothing when there is none.
[[nodiscard]] std::optional<InstanceReport> resolve(const std::string& path);

}  // namespace test

#endif  // ORVEX_TESTS_MODULES_CLIENT_H_
