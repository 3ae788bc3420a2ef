// The rule of core::CimProperty that knows the types: which of them can be compared.

#include "Utils/Exception.h"
#include "Utils/Format.h"
#include "core/CimProperty.h"
#include "core/CimPropertyTypes.h"

namespace core {
namespace {

[[noreturn]] void forbidModifying(const CimProperty& property) {
  throw utils::EForbidden(
      utils::format("Modyfying of %s property is not allowed", property.getName().c_str()));
}

template <class Property>
bool differ(const CimProperty& left, const CimProperty& right) {
  const auto* other = dynamic_cast<const Property*>(&right);
  return other == nullptr || static_cast<const Property&>(left).getValue() != other->getValue();
}

bool isComparable(std::uint32_t type) {
  return type == kCimUint8 || type == kCimUint16 || type == kCimUint64 || type == kCimString;
}

// Compares two values of a type that can be compared.
bool valuesDiffer(const CimProperty& property, const CimProperty& newValue) {
  switch (property.getType()) {
    case kCimUint8:
      return differ<CimPropertyUint8>(property, newValue);
    case kCimUint16:
      return differ<CimPropertyUint16>(property, newValue);
    case kCimUint64:
      return differ<CimPropertyUint64>(property, newValue);
    default:
      return property.toString() != newValue.toString();
  }
}

}  // namespace

void CimProperty::IsModifyEnabledListener::onVerify(CimProperty* property, CimProperty* newValue) {
  if (property->isNull() != newValue->isNull()) {
    if (!property->isModifyEnabled()) {
      forbidModifying(*property);
    }
    if (newValue->isNull()) {
      throw utils::EInvalidParameter(
          utils::format("Property %s cannot be a NULL", property->getName().c_str()));
    }
  }
  if (!isComparable(property->getType())) {
    throw utils::EForbidden(
        utils::format("Unsupported type: %d", static_cast<int>(property->getType())));
  }
  if (!property->isModifyEnabled() && !property->isNull() && !newValue->isNull() &&
      valuesDiffer(*property, *newValue)) {
    forbidModifying(*property);
  }
}

}  // namespace core
