#include "client/Snapshot.h"

#include <algorithm>

#include "Utils/Exception.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"

namespace client {
namespace {

template <class Property>
Value valueOf(const core::CimProperty& property) {
  return Value(static_cast<const Property&>(property).getValue());
}

Value readValue(const core::CimProperty& property) {
  if (property.isNull()) {
    return {};
  }
  switch (static_cast<core::CimType>(property.getType())) {
    case core::kCimUint8:
      return valueOf<core::CimPropertyUint8>(property);
    case core::kCimSint8:
      return valueOf<core::CimPropertySint8>(property);
    case core::kCimUint16:
      return valueOf<core::CimPropertyUint16>(property);
    case core::kCimUint16Array:
      return valueOf<core::CimPropertyUint16_arr>(property);
    case core::kCimUint32:
      return valueOf<core::CimPropertyUint32>(property);
    case core::kCimUint64:
      return valueOf<core::CimPropertyUint64>(property);
    case core::kCimString:
      return valueOf<core::CimPropertyString>(property);
    case core::kCimStringArray:
      return valueOf<core::CimPropertyString_arr>(property);
    case core::kCimBoolean:
      return Value(static_cast<const core::CimPropertyBoolean&>(property).getValue() != 0);
    case core::kCimDatetime:
      return Value(static_cast<const core::CimPropertyDatetime&>(property).getValue().toCimText());
    case core::kCimReference:
      return Value(property.toString());
  }
  throw utils::ENotSupported("Property " + property.getName() + " has an unknown type");
}

PropertySnapshot::Kind kindOf(const core::CimProperty& property) {
  switch (property.getType()) {
    case core::kCimDatetime:
      return PropertySnapshot::Kind::Datetime;
    case core::kCimReference:
      return PropertySnapshot::Kind::Reference;
    default:
      return PropertySnapshot::Kind::Value;
  }
}

}  // namespace

const PropertySnapshot* InstanceSnapshot::find(std::string_view propertyName) const {
  const auto found = std::find_if(
      properties.begin(), properties.end(),
      [propertyName](const PropertySnapshot& property) { return property.name == propertyName; });
  return found != properties.end() ? &*found : nullptr;
}

PropertySnapshot snapshotOf(const core::CimProperty& property) {
  return {property.getName(), kindOf(property), readValue(property)};
}

Properties snapshotOf(core::CimPropertyList& properties) {
  Properties result;
  core::CimPropertyList::Iterator cursor = properties.iterator();
  for (const core::CimProperty* property = cursor.first(); property != nullptr;
       property = cursor.next()) {
    result.push_back(snapshotOf(*property));
  }
  return result;
}

InstanceSnapshot snapshotOf(core::CimInstance& instance) {
  return {instance.getClassName(), instance.getPath(), snapshotOf(instance.getProperties())};
}

Value toValue(const Properties& properties, NullProperties nulls) {
  Value result = Value::object();
  for (const PropertySnapshot& property : properties) {
    if (nulls == NullProperties::Shown || !property.value.isNull()) {
      result.set(property.name, property.value);
    }
  }
  return result;
}

Value toValue(const InstanceSnapshot& instance, NullProperties nulls) {
  return Value::object(
      {{"path", instance.path}, {"properties", toValue(instance.properties, nulls)}});
}

}  // namespace client
