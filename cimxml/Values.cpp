#include "cimxml/Values.h"

#include "cimxml/NameWriter.h"
#include "cimxml/ScalarText.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"
#include "core/ClassDeclaration.h"

namespace cimxml {
namespace {

template <class Property>
const auto& valueOf(const core::CimProperty& property) {
  return static_cast<const Property&>(property).getValue();
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
