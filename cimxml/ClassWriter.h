// The declarations of classes in CIM-XML.

#ifndef ORVEX_CIMXML_CLASSWRITER_H_
#define ORVEX_CIMXML_CLASSWRITER_H_

#include "cimxml/Buffer.h"
#include "cimxml/NameSet.h"
#include "core/ClassDeclaration.h"
#include "core/ClassQualifiers.h"

namespace cimxml {

struct ClassFormat {
  bool isLocalOnly = false;
  bool hasClassOrigin = false;
  const core::ClassQualifiers* qualifiers = nullptr;  // null: none is written
  const NameSet* propertyList = nullptr;              // null: all
};

// <CLASS NAME="..." SUPERCLASS="...">: qualifiers, properties, methods.
void appendClass(Buffer& out, const core::ClassDeclaration& declaration, const ClassFormat& format);

}  // namespace cimxml

#endif  // ORVEX_CIMXML_CLASSWRITER_H_
