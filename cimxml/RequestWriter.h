// Requests of a CIM client (DSP0201: SIMPLEREQ), appended to a buffer in one pass. Text is escaped;
// see cimxml/Buffer.h.

#ifndef ORVEX_CIMXML_REQUESTWRITER_H_
#define ORVEX_CIMXML_REQUESTWRITER_H_

#include <string_view>

#include "cimxml/Buffer.h"
#include "cimxml/ObjectName.h"
#include "core/CimProperty.h"

namespace cimxml {

// ---- operations ----

// <?xml ...><CIM ...><MESSAGE ...><SIMPLEREQ><IMETHODCALL NAME="..."> with its namespace, and its
// end.
void beginOperationRequest(Buffer& out, std::string_view messageId, std::string_view nameSpace,
                           std::string_view operation);
void endOperationRequest(Buffer& out);
// <IPARAMVALUE NAME="..."><CLASSNAME NAME="..."/></IPARAMVALUE>
void appendClassNameParameter(Buffer& out, std::string_view name, std::string_view className);
// <IPARAMVALUE NAME="..."><INSTANCENAME ...>; references among the keys get the namespace.
void appendInstanceNameParameter(Buffer& out, std::string_view name, const ObjectName& instance,
                                 std::string_view nameSpace);
void appendBooleanParameter(Buffer& out, std::string_view name, bool value);
// <IPARAMVALUE NAME="..."><VALUE>...</VALUE></IPARAMVALUE>
void appendStringParameter(Buffer& out, std::string_view name, std::string_view value);

// ---- methods ----

// The same round a METHODCALL of an instance.
void beginMethodRequest(Buffer& out, std::string_view messageId, std::string_view nameSpace,
                        std::string_view method, const ObjectName& target);
void endMethodRequest(Buffer& out);
// <PARAMVALUE NAME= PARAMTYPE=>...; NULL is written without value. Not for references.
void appendArgument(Buffer& out, const core::CimProperty& value);
// <PARAMVALUE NAME= PARAMTYPE="reference">; null: NULL.
void appendReferenceArgument(Buffer& out, std::string_view name, const ObjectName* target,
                             std::string_view nameSpace);

}  // namespace cimxml

#endif  // ORVEX_CIMXML_REQUESTWRITER_H_
