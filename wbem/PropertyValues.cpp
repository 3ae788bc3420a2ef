#include "wbem/PropertyValues.h"

#include <limits>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

#include "Utils/Datetime.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"
#include "wbem/InstanceNames.h"
#include "wbem/Scalars.h"

namespace wbem {
namespace {

// One value and whose it is.
struct Source {
  const ValueContext& context;
  const std::string& name;
  const cimxml::Value& value;

  [[noreturn]] void refuse(const std::string& reason) const { refuse(context.whenWrong, reason); }
  [[noreturn]] void refuse(Status status, const std::string& reason) const {
    throw StatusFault(status, name + " of " + context.owner + ": " + reason);
  }

  [[nodiscard]] const std::string& text() const {
    const auto* text = std::get_if<std::string>(&value);
    if (text == nullptr) {
      refuse("is to be one value");
    }
    return *text;
  }
};

template <class Number>
Number toNumber(const Source& source, const std::string& text) {
  const std::optional<Number> number = wbem::toNumber<Number>(text);
  if (!number) {
    source.refuse("'" + text + "' is no whole number from " +
                  std::to_string(std::numeric_limits<Number>::min()) + " to " +
                  std::to_string(std::numeric_limits<Number>::max()));
  }
  return *number;
}

std::uint8_t readBoolean(const Source& source) {
  const std::optional<bool> value = toBoolean(source.text());
  if (!value) {
    source.refuse("'" + source.text() + "' is neither TRUE nor FALSE");
  }
  return *value ? 1 : 0;
}

utils::Datetime readDatetime(const Source& source) {
  const std::optional<utils::Datetime> value = utils::Datetime::fromCimText(source.text());
  if (!value) {
    source.refuse("'" + source.text() + "' is no datetime: yyyymmddhhmmss.mmmmmmsutc, or " +
                  "ddddddddhhmmss.mmmmmm:000");
  }
  return *value;
}

template <class Element, class Read>
std::vector<Element> readArray(const Source& source, Read read) {
  const auto* texts = std::get_if<cimxml::StringArray>(&source.value);
  if (texts == nullptr) {
    source.refuse("is to be an array");
  }
  std::vector<Element> elements;
  elements.reserve(texts->size());
  for (const std::optional<std::string>& text : *texts) {
    if (!text) {
      source.refuse("an element is NULL");
    }
    elements.push_back(read(*text));
  }
  return elements;
}

cimxml::ObjectName readObjectName(const Source& source) {
  if (const auto* name = std::get_if<cimxml::ObjectName>(&source.value)) {
    return *name;
  }
  const std::string& path = source.text();
  std::optional<cimxml::ObjectName> name = cimxml::readObjectPath(path);
  if (!name) {
    source.refuse("'" + path + "' is no object path");
  }
  return std::move(*name);
}

std::string readReference(const Source& source) {
  const cimxml::ObjectName name = readObjectName(source);
  const Namespaces& namespaces = source.context.namespaces;
  if (const cimxml::ObjectName* foreign = findForeignName(name, namespaces.names())) {
    source.refuse(Status::InvalidParameter,
                  "there is no namespace '" + foreign->nameSpace + "' here");
  }
  return cimxml::toObjectPath(toDeclaredName(namespaces.agents().schema(), name));
}

template <class Property, class Read>
std::unique_ptr<core::CimProperty> make(const Source& source, Read read) {
  auto property = std::make_unique<Property>(source.name.c_str(), nullptr);
  if (!std::holds_alternative<std::monostate>(source.value)) {
    property->setValue(read(source));
  }
  return property;
}

template <class Property, class Number>
std::unique_ptr<core::CimProperty> makeNumber(const Source& source) {
  return make<Property>(source,
                        [](const Source& one) { return toNumber<Number>(one, one.text()); });
}

std::unique_ptr<core::CimProperty> makeReference(const Source& source) {
  auto property = std::make_unique<core::CimPropertyRef>(source.name.c_str(), nullptr);
  if (!std::holds_alternative<std::monostate>(source.value)) {
    property->setText(readReference(source));
  }
  return property;
}

}  // namespace

void demandType(const ValueContext& context, const std::string& name, core::CimType type,
                const std::string& given) {
  if (!given.empty() && !core::isSameName(given, core::getTypeName(type))) {
    throw StatusFault(context.whenWrong, name + " of " + context.owner + ": is a " +
                                             std::string(core::getTypeName(type)) + ", no " +
                                             given);
  }
}

std::unique_ptr<core::CimProperty> makeProperty(const ValueContext& context,
                                                const std::string& name, core::CimType type,
                                                const cimxml::Value& value) {
  const Source source{context, name, value};
  switch (type) {
    case core::kCimUint8:
      return makeNumber<core::CimPropertyUint8, std::uint8_t>(source);
    case core::kCimSint8:
      return makeNumber<core::CimPropertySint8, std::int8_t>(source);
    case core::kCimUint16:
      return makeNumber<core::CimPropertyUint16, std::uint16_t>(source);
    case core::kCimUint16Array:
      return make<core::CimPropertyUint16_arr>(source, [](const Source& all) {
        return readArray<std::uint16_t>(
            all, [&all](const std::string& text) { return toNumber<std::uint16_t>(all, text); });
      });
    case core::kCimUint32:
      return makeNumber<core::CimPropertyUint32, std::uint32_t>(source);
    case core::kCimUint64:
      return makeNumber<core::CimPropertyUint64, std::uint64_t>(source);
    case core::kCimString:
      return make<core::CimPropertyString>(source, [](const Source& one) { return one.text(); });
    case core::kCimStringArray:
      return make<core::CimPropertyString_arr>(source, [](const Source& all) {
        return readArray<std::string>(all, [](const std::string& text) { return text; });
      });
    case core::kCimBoolean:
      return make<core::CimPropertyBoolean>(source, readBoolean);
    case core::kCimDatetime:
      return make<core::CimPropertyDatetime>(source, readDatetime);
    case core::kCimReference:
      return makeReference(source);
  }
  source.refuse("is of an unknown type");
}

}  // namespace wbem
