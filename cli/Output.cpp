#include "cli/Output.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "Os/Texts.h"
#include "Utils/Exception.h"
#include "cli/TextTable.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"

namespace cli {
namespace {

constexpr int kIndent = 2;

template <class Property>
const auto& valueOf(const core::CimProperty& property) {
  return static_cast<const Property&>(property);
}

// Strings as programs write them, so that a text can be pasted into one.
std::string quoteString(const std::string& text) {
  std::string result = "\"";
  for (const char character : text) {
    if (character == '"' || character == '\\') {
      result += '\\';
    }
    result += character;
  }
  return toPrintable(result) + "\"";
}

std::string itemToText(const Json& item) {
  return item.is_string() ? quoteString(item.get_ref<const std::string&>()) : item.dump();
}

std::string arrayToText(const Json& items) {
  std::string result;
  for (const Json& item : items) {
    result += (result.empty() ? "" : ", ") + itemToText(item);
  }
  return "{" + result + "}";
}

bool isShown(const PropertySnapshot& property, NullProperties nulls) {
  return nulls == NullProperties::Shown || !property.value.is_null();
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

// Names of fields are no texts from outside.
void makeUtf8(Json& value) {
  if (value.is_string()) {
    value = os::toUtf8(value.get_ref<const std::string&>());
  } else if (value.is_structured()) {
    for (Json& item : value) {
      makeUtf8(item);
    }
  }
}

}  // namespace

Json toJson(const core::CimProperty& property) {
  if (property.isNull()) {
    return nullptr;
  }
  switch (static_cast<core::CimType>(property.getType())) {
    case core::kCimUint8:
      return valueOf<core::CimPropertyUint8>(property).getValue();
    case core::kCimSint8:
      return valueOf<core::CimPropertySint8>(property).getValue();
    case core::kCimUint16:
      return valueOf<core::CimPropertyUint16>(property).getValue();
    case core::kCimUint16Array:
      return valueOf<core::CimPropertyUint16_arr>(property).getValue();
    case core::kCimUint32:
      return valueOf<core::CimPropertyUint32>(property).getValue();
    case core::kCimUint64:
      return valueOf<core::CimPropertyUint64>(property).getValue();
    case core::kCimString:
      return valueOf<core::CimPropertyString>(property).getValue();
    case core::kCimStringArray:
      return valueOf<core::CimPropertyString_arr>(property).getValue();
    case core::kCimBoolean:
      return valueOf<core::CimPropertyBoolean>(property).getValue() != 0;
    case core::kCimDatetime:
      return valueOf<core::CimPropertyDatetime>(property).getValue().toCimText();
    case core::kCimReference:
      return property.toString();
  }
  throw utils::ENotSupported("Property " + property.getName() + " has an unknown type");
}

std::string toText(const core::CimProperty& property) {
  return toText(snapshotOf(property));
}

std::string toText(const PropertySnapshot& property) {
  const Json& value = property.value;
  if (value.is_null()) {
    return "NULL";
  }
  if (property.kind != PropertySnapshot::Kind::Value) {
    return toPrintable(value.get_ref<const std::string&>());
  }
  return value.is_array() ? arrayToText(value) : itemToText(value);
}

PropertySnapshot snapshotOf(const core::CimProperty& property) {
  return {property.getName(), kindOf(property), toJson(property)};
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

Json propertiesToJson(const Properties& properties, NullProperties nulls) {
  Json result = Json::object();
  for (const PropertySnapshot& property : properties) {
    if (isShown(property, nulls)) {
      result[property.name] = property.value;
    }
  }
  return result;
}

Json instanceToJson(const InstanceSnapshot& instance, NullProperties nulls) {
  Json result;
  result["path"] = instance.path;
  result["properties"] = propertiesToJson(instance.properties, nulls);
  return result;
}

void printProperties(std::ostream& out, const Properties& properties, NullProperties nulls) {
  // A host may name a property as it likes.
  std::vector<std::pair<std::string, const PropertySnapshot*>> shown;
  std::size_t width = 0;
  for (const PropertySnapshot& property : properties) {
    if (isShown(property, nulls)) {
      const std::string& name = shown.emplace_back(toPrintable(property.name), &property).first;
      width = std::max(width, name.size());
    }
  }
  for (const auto& [name, property] : shown) {
    out << std::string(kIndent, ' ') << name << std::string(width - name.size(), ' ') << " = "
        << toText(*property) << '\n';
  }
}

void printJson(std::ostream& out, Json document) {
  makeUtf8(document);
  out << document.dump(kIndent, ' ', false, Json::error_handler_t::replace) << '\n';
}

}  // namespace cli
