// The buffer that CIM-XML is appended to, and the pieces that all of it is made of: escaped text,
// numbers, attributes, end tags. A buffer that is kept needs no memory after the first messages.
//
// Text is escaped, and bytes that no XML document may hold become U+FFFD.
//
// Elements that may hold others have an end tag where they are empty, too: there are clients whose
// parsers take "<PROPERTY/>" for the start of a property.

#ifndef ORVEX_CIMXML_BUFFER_H_
#define ORVEX_CIMXML_BUFFER_H_

#include <charconv>
#include <limits>
#include <string>
#include <string_view>

namespace cimxml {

using Buffer = std::string;

void appendEscaped(Buffer& out, std::string_view text);

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

}  // namespace cimxml

#endif  // ORVEX_CIMXML_BUFFER_H_
