#include "cimxml/Values.h"

#include <optional>

#include "cimxml/ObjectName.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"
#include "core/ClassDeclaration.h"

namespace cimxml {
namespace {

template <class Property>
const auto& valueOf(const core::CimProperty& property) {
  return static_cast<const Property&>(property).getValue();
}

template <class Property>
auto numberOf(const core::CimProperty& property) {
  return static_cast<const Property&>(property).getValue();
}

void beginLocalPath(Buffer& out, std::string_view nameSpace) {
  out += "<VALUE.REFERENCE><LOCALINSTANCEPATH>";
  appendLocalNamespacePath(out, nameSpace);
}

void endLocalPath(Buffer& out) {
  out += "</LOCALINSTANCEPATH></VALUE.REFERENCE>";
}

bool appendReference(Buffer& out, const core::CimPropertyRef& reference,
                     std::string_view nameSpace) {
  if (core::CimInstance* target = reference.getTarget(); target != nullptr) {
    beginLocalPath(out, nameSpace);
    appendInstanceName(out, *target, nameSpace);
    endLocalPath(out);
    return true;
  }
  const std::optional<ObjectName> name = readObjectPath(reference.toString());
  if (!name || !name->isInstance) {
    return false;
  }
  const std::string_view where = name->nameSpace.empty() ? nameSpace : name->nameSpace;
  beginLocalPath(out, where);
  appendInstanceName(out, *name, where);
  endLocalPath(out);
  return true;
}

template <class Values, class AppendOne>
void appendArray(Buffer& out, const Values& values, AppendOne appendOne) {
  out += "<VALUE.ARRAY>";
  for (const auto& value : values) {
    out += "<VALUE>";
    appendOne(value);
    out += "</VALUE>";
  }
  out += "</VALUE.ARRAY>";
}

}  // namespace

void appendAttribute(Buffer& out, std::string_view name, std::string_view value) {
  out += ' ';
  out += name;
  out += "=\"";
  appendEscaped(out, value);
  out += '"';
}

void appendEndTag(Buffer& out, std::string_view element) {
  out += "</";
  out += element;
  out += '>';
}

void appendScalarText(Buffer& out, const core::CimProperty& property) {
  switch (static_cast<core::CimType>(property.getType())) {
    case core::kCimUint8:
      appendNumber<unsigned>(out, numberOf<core::CimPropertyUint8>(property));
      break;
    case core::kCimSint8:
      appendNumber<int>(out, numberOf<core::CimPropertySint8>(property));
      break;
    case core::kCimUint16:
      appendNumber<unsigned>(out, numberOf<core::CimPropertyUint16>(property));
      break;
    case core::kCimUint32:
      appendNumber(out, numberOf<core::CimPropertyUint32>(property));
      break;
    case core::kCimUint64:
      appendNumber(out, numberOf<core::CimPropertyUint64>(property));
      break;
    case core::kCimString:
      appendEscaped(out, valueOf<core::CimPropertyString>(property));
      break;
    case core::kCimBoolean:
      out += numberOf<core::CimPropertyBoolean>(property) == 1 ? "TRUE" : "FALSE";
      break;
    case core::kCimDatetime:
      out += valueOf<core::CimPropertyDatetime>(property).toCimText();
      break;
    case core::kCimUint16Array:
    case core::kCimStringArray:
    case core::kCimReference:
      break;
  }
}

bool appendValue(Buffer& out, const core::CimProperty& property, std::string_view nameSpace) {
  if (property.isNull()) {
    return false;
  }
  switch (property.getType()) {
    case core::kCimReference:
      return appendReference(out, static_cast<const core::CimPropertyRef&>(property), nameSpace);
    case core::kCimUint16Array:
      appendArray(out, valueOf<core::CimPropertyUint16_arr>(property),
                  [&out](std::uint16_t value) { appendNumber<unsigned>(out, value); });
      return true;
    case core::kCimStringArray:
      appendArray(out, valueOf<core::CimPropertyString_arr>(property),
                  [&out](const std::string& value) { appendEscaped(out, value); });
      return true;
    default:
      out += "<VALUE>";
      appendScalarText(out, property);
      out += "</VALUE>";
      return true;
  }
}

std::string_view getPropertyElement(core::CimType type) {
  return core::isArray(type)           ? "PROPERTY.ARRAY"
         : type == core::kCimReference ? "PROPERTY.REFERENCE"
                                       : "PROPERTY";
}

std::string_view getParameterElement(core::CimType type) {
  return core::isArray(type)           ? "PARAMETER.ARRAY"
         : type == core::kCimReference ? "PARAMETER.REFERENCE"
                                       : "PARAMETER";
}

void appendTypeAttribute(Buffer& out, core::CimType type, std::string_view referenceClass) {
  if (type != core::kCimReference) {
    appendAttribute(out, "TYPE", core::getTypeName(type));
  } else if (!referenceClass.empty()) {
    appendAttribute(out, "REFERENCECLASS", referenceClass);
  }
}

}  // namespace cimxml
