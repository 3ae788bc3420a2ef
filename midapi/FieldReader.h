// The fields of a JSON object, each checked as it is read.

#ifndef ORVEX_MIDAPI_FIELDREADER_H_
#define ORVEX_MIDAPI_FIELDREADER_H_

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include "midapi/BoundedJson.h"

namespace ma {

inline constexpr std::size_t kDigestDigits = 16;
inline constexpr std::uint64_t kMaxUint32 = std::numeric_limits<std::uint32_t>::max();

// Throws DescriptionFault: "field ports[1].mac: " and the demand.
[[noreturn]] void refuseField(const std::string& field, const std::string& demand);

// Throws DescriptionFault for a field that is not as it is asked for, or is missing. Refers to the
// object; `prefix` is where that stands, as in "faults.write.".
class FieldReader {
 public:
  FieldReader(const Json& object, std::string prefix);

  // Returns the field's name with the prefix.
  [[nodiscard]] std::string nameOf(const char* field) const { return m_prefix + field; }

  // Returns null where there is no such field.
  [[nodiscard]] const Json* find(const char* field) const;
  [[nodiscard]] const Json& need(const char* field) const;

  [[nodiscard]] std::string text(const char* field) const;
  [[nodiscard]] std::uint64_t number(const char* field, std::uint64_t min, std::uint64_t max) const;
  [[nodiscard]] std::uint64_t numberOr(const char* field, std::uint64_t max,
                                       std::uint64_t fallback) const;
  [[nodiscard]] std::uint16_t pciId(const char* field) const;
  // Reads sixteen hexadecimal digits.
  [[nodiscard]] std::uint64_t digest(const char* field) const;
  // Returns nothing where there is no such field.
  [[nodiscard]] std::optional<FieldReader> object(const char* field) const;

 private:
  const Json& m_object;
  std::string m_prefix;
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_FIELDREADER_H_
