// How the values of properties stand in CIM-XML, and how elements tell their types.

#ifndef ORVEX_CIMXML_VALUES_H_
#define ORVEX_CIMXML_VALUES_H_

#include <string_view>

#include "cimxml/Buffer.h"
#include "core/CimProperty.h"

namespace cimxml {

// <VALUE>, <VALUE.ARRAY> or <VALUE.REFERENCE>. Returns false, and appends nothing, for NULL: a
// reference to nothing that has a name is one too.
bool appendValue(Buffer& out, const core::CimProperty& property, std::string_view nameSpace);

// PROPERTY, PROPERTY.ARRAY, PROPERTY.REFERENCE; with the other stem PARAMETER, ...
[[nodiscard]] std::string_view getPropertyElement(core::CimType type);
[[nodiscard]] std::string_view getParameterElement(core::CimType type);

// TYPE="uint16" or, of a reference, REFERENCECLASS="..." where one is fixed.
void appendTypeAttribute(Buffer& out, core::CimType type, std::string_view referenceClass);

}  // namespace cimxml

#endif  // ORVEX_CIMXML_VALUES_H_
