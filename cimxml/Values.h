// How values stand in CIM-XML: what the writer's files share.
//
// Elements that may hold others have an end tag where they are empty, too: there are clients whose
// parsers take "<PROPERTY/>" for the start of a property.

#ifndef ORVEX_CIMXML_VALUES_H_
#define ORVEX_CIMXML_VALUES_H_

#include <charconv>
#include <limits>
#include <string_view>

#include "cimxml/Writer.h"
#include "core/CimProperty.h"

namespace cimxml {

template <class Number>
void appendNumber(Buffer& out, Number number) {
  char digits[std::numeric_limits<Number>::digits10 + 3];
  const auto [end, error] = std::to_chars(digits, digits + sizeof(digits), number);
  static_cast<void>(error);  // there is room for all of them
  out.append(digits, end);
}

// NAME="VALUE" behind a blank.
void appendAttribute(Buffer& out, std::string_view name, std::string_view value);

// </ELEMENT>
void appendEndTag(Buffer& out, std::string_view element);

// Appends the text of a value that is neither an array nor a reference, escaped; whether the
// property is NULL is not asked.
void appendScalarText(Buffer& out, const core::CimProperty& property);

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
