// The declarations of classes in CIM-XML.

#ifndef ORVEX_CIMXML_CLASSWRITER_H_
#define ORVEX_CIMXML_CLASSWRITER_H_

#include "cimxml/Buffer.h"
#include "cimxml/NameSet.h"
#include "core/ClassDeclaration.h"

namespace cimxml {

struct ClassFormat {
  bool isLocalOnly = false;
  bool hasQualifiers = true;
  bool hasClassOrigin = false;
  const NameSet* propertyList = nullptr;  // null: all
};

// <CLASS NAME="..." SUPERCLASS="...">: qualifiers (Association, Key, In, Out), properties, methods.
void appendClass(Buffer& out, const core::ClassDeclaration& declaration, const ClassFormat& format);

}  // namespace cimxml

#endif  // ORVEX_CIMXML_CLASSWRITER_H_
