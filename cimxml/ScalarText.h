// The text of a property's value in CIM-XML (DSP0201, 4.2), as values and keys share it.

#ifndef ORVEX_CIMXML_SCALARTEXT_H_
#define ORVEX_CIMXML_SCALARTEXT_H_

#include "cimxml/Buffer.h"
#include "core/CimProperty.h"

namespace cimxml {

// Appends the text of a value that is neither an array nor a reference, escaped; whether the
// property is NULL is not asked.
void appendScalarText(Buffer& out, const core::CimProperty& property);

}  // namespace cimxml

#endif  // ORVEX_CIMXML_SCALARTEXT_H_
