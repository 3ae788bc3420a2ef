#include "midapi/FieldReader.h"

#include <charconv>
#include <system_error>
#include <utility>

#include "midapi/DescriptionFault.h"
#include "midapi/Hex.h"
#include "platform/Texts.h"

namespace ma {

void refuseField(const std::string& field, const std::string& demand) {
  throw DescriptionFault("field " + field + ": " + demand);
}

FieldReader::FieldReader(const Json& object, std::string prefix)
    : m_object(object), m_prefix(std::move(prefix)) {}

const Json* FieldReader::find(const char* field) const {
  const auto found = m_object.find(field);
  return found == m_object.end() ? nullptr : &*found;
}

const Json& FieldReader::need(const char* field) const {
  const Json* value = find(field);
  if (value == nullptr) {
    refuseField(nameOf(field), "is missing");
  }
  return *value;
}

std::string FieldReader::text(const char* field) const {
  const Json& value = need(field);
  if (!value.is_string()) {
    refuseField(nameOf(field), "must be a text");
  }
  return platform::fromUtf8(value.get<std::string>());
}

std::uint64_t FieldReader::number(const char* field, std::uint64_t min, std::uint64_t max) const {
  const Json& value = need(field);
  if (!value.is_number_unsigned() || value.get<std::uint64_t>() < min ||
      value.get<std::uint64_t>() > max) {
    refuseField(nameOf(field), "must be a whole number from " + std::to_string(min) + " to " +
                                   std::to_string(max));
  }
  return value.get<std::uint64_t>();
}

std::uint64_t FieldReader::numberOr(const char* field, std::uint64_t max,
                                    std::uint64_t fallback) const {
  return find(field) == nullptr ? fallback : number(field, 0, max);
}

std::uint16_t FieldReader::pciId(const char* field) const {
  const std::string digits = text(field);
  const auto value = digits.size() == 4 ? parseHex(digits) : std::nullopt;
  if (!value) {
    refuseField(nameOf(field), "must be four hexadecimal digits, like \"1af4\"");
  }
  return static_cast<std::uint16_t>(*value);
}

std::uint64_t FieldReader::digest(const char* field) const {
  const std::string digits = text(field);
  const char* const end = digits.data() + digits.size();
  std::uint64_t value = 0;
  const auto [stop, fault] = std::from_chars(digits.data(), end, value, 16);
  if (digits.size() != kDigestDigits || fault != std::errc() || stop != end) {
    refuseField(nameOf(field), "must be sixteen hexadecimal digits");
  }
  return value;
}

std::optional<FieldReader> FieldReader::object(const char* field) const {
  const Json* value = find(field);
  if (value == nullptr) {
    return std::nullopt;
  }
  if (!value->is_object()) {
    refuseField(nameOf(field), "must be an object");
  }
  return FieldReader(*value, nameOf(field) + ".");
}

}  // namespace ma
