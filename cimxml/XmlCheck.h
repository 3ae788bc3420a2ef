// Whether a text is a well-formed XML 1.0 document, for a parser behind it that is lenient.
//
// The document is UTF-8, declares no other encoding, and has no document type declaration with an
// internal subset; there are no entities beyond XML's own five and character references. Names are
// taken by their ASCII signs, others are allowed in them.

#ifndef ORVEX_CIMXML_XMLCHECK_H_
#define ORVEX_CIMXML_XMLCHECK_H_

#include <cstddef>
#include <string_view>

namespace cimxml {

inline constexpr std::size_t kDeepestElement = 64;
inline constexpr std::size_t kMostAttributes = 64;  // of one element

enum class XmlFault {
  None,
  NotWellFormed,
  NotTaken,  // elements too deep, too many attributes, an internal subset
};

struct XmlCheck {
  XmlFault fault = XmlFault::None;
  const char* problem = "";  // what is wrong
  std::size_t position = 0;  // where that is; where the root element begins, if nothing is wrong
};

[[nodiscard]] XmlCheck checkXml(std::string_view document);

}  // namespace cimxml

#endif  // ORVEX_CIMXML_XMLCHECK_H_
