#include "query/CimInstanceView.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"
#include "core/ClassDeclaration.h"

namespace query {
namespace {

Value number(std::uint64_t value) {
  return {value};
}

Value signedNumber(std::int64_t value) {
  return value < 0 ? Value{value} : number(static_cast<std::uint64_t>(value));
}

template <class Property>
const Property& as(const core::CimProperty& property) {
  return static_cast<const Property&>(property);
}

template <class Property>
Value toArray(const core::CimProperty& property) {
  Array elements;
  for (const auto& element : as<Property>(property).getValue()) {
    if constexpr (std::is_same_v<Property, core::CimPropertyString_arr>) {
      elements.push_back({element});
    } else {
      elements.push_back(number(element));
    }
  }
  return {std::move(elements)};
}

core::CimProperty* findProperty(core::CimInstance& instance, std::string_view name) {
  if (core::CimProperty* exact = instance.getProperty(std::string(name))) {
    return exact;
  }
  std::vector<core::CimProperty*> properties;
  instance.getProperties().copyTo(properties);
  const auto found =
      std::find_if(properties.begin(), properties.end(), [name](const core::CimProperty* property) {
        return core::isSameName(property->getName(), name);
      });
  return found != properties.end() ? *found : nullptr;
}

}  // namespace

CimInstanceView::CimInstanceView(core::CimInstance& instance, const core::CimSchema& schema)
    : m_instance(instance), m_schema(schema), m_className(instance.getClassName()) {}

CimInstanceView::~CimInstanceView() = default;

bool CimInstanceView::isA(std::string_view className) const {
  return core::isSameName(m_className, className) || m_schema.isA(m_className, className);
}

Value CimInstanceView::getValue(std::string_view propertyName) const {
  const core::CimProperty* property = findProperty(m_instance, propertyName);
  return property != nullptr ? toValue(*property) : Value();
}

Value toValue(const core::CimProperty& property) {
  if (property.isNull()) {
    return {};
  }
  switch (static_cast<core::CimType>(property.getType())) {
    case core::kCimUint8:
      return number(as<core::CimPropertyUint8>(property).getValue());
    case core::kCimSint8:
      return signedNumber(as<core::CimPropertySint8>(property).getValue());
    case core::kCimUint16:
      return number(as<core::CimPropertyUint16>(property).getValue());
    case core::kCimUint32:
      return number(as<core::CimPropertyUint32>(property).getValue());
    case core::kCimUint64:
      return number(as<core::CimPropertyUint64>(property).getValue());
    case core::kCimBoolean:
      return {as<core::CimPropertyBoolean>(property).getValue() == 1};
    case core::kCimString:
      return {as<core::CimPropertyString>(property).getValue()};
    case core::kCimDatetime:
      return {as<core::CimPropertyDatetime>(property).getValue()};
    case core::kCimReference:
      return {ObjectPath{property.toString()}};
    case core::kCimUint16Array:
      return toArray<core::CimPropertyUint16_arr>(property);
    case core::kCimStringArray:
      return toArray<core::CimPropertyString_arr>(property);
  }
  return {};
}

}  // namespace query
