#include "cimxml/ScalarText.h"

#include "core/CimPropertyTypes.h"

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

}  // namespace

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

}  // namespace cimxml
