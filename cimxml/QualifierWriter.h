// Qualifiers and their declarations in CIM-XML (DSP0201). A flavor is written where it is not what
// a client takes for granted.

#ifndef ORVEX_CIMXML_QUALIFIERWRITER_H_
#define ORVEX_CIMXML_QUALIFIERWRITER_H_

#include "cimxml/Buffer.h"
#include "core/ClassQualifiers.h"
#include "core/Qualifiers.h"

namespace cimxml {

// <QUALIFIER NAME= TYPE= ...>: its value. `isPropagated`: the element is inherited, and so is this.
void appendQualifier(Buffer& out, const core::Qualifier& qualifier, bool isPropagated);

// <QUALIFIER.DECLARATION NAME= TYPE= ISARRAY= ...>: where it may stand, and what it is where it
// does not stand.
void appendQualifierDeclaration(Buffer& out, const core::QualifierDeclaration& declaration);

}  // namespace cimxml

#endif  // ORVEX_CIMXML_QUALIFIERWRITER_H_
