// The answers of a CIM server (DSP0201: a SIMPLERSP), appended to a buffer in one pass; what stands
// in an operation's return value is written by cimxml/NameWriter.h, InstanceFormat.h,
// ClassWriter.h, QualifierWriter.h. Callers hold the broker's request while they pass instances.

#ifndef ORVEX_CIMXML_ANSWERWRITER_H_
#define ORVEX_CIMXML_ANSWERWRITER_H_

#include <cstdint>
#include <string_view>

#include "cimxml/Buffer.h"
#include "cimxml/StatusCode.h"
#include "core/CimInstance.h"
#include "core/CimProperty.h"

namespace cimxml {

// <?xml ...><CIM ...><MESSAGE ...><SIMPLERSP><IMETHODRESPONSE NAME="..."> and its end.
void beginOperationAnswer(Buffer& out, std::string_view messageId, std::string_view operation);
void endOperationAnswer(Buffer& out);
// The same round a METHODRESPONSE.
void beginMethodAnswer(Buffer& out, std::string_view messageId, std::string_view method);
void endMethodAnswer(Buffer& out);
// <ERROR CODE="..." DESCRIPTION="..."/>, in the place of a return value.
void appendError(Buffer& out, StatusCode code, std::string_view description);
// <IRETURNVALUE> and its end.
void beginReturnValue(Buffer& out);
void endReturnValue(Buffer& out);
// <RETURNVALUE PARAMTYPE="uint32"><VALUE>...</VALUE></RETURNVALUE>
void appendMethodReturnValue(Buffer& out, std::uint32_t value);
// An output parameter of a method: <PARAMVALUE NAME= PARAMTYPE=>...; NULL is written without value.
// References get the namespace.
void appendOutputParameter(Buffer& out, const core::CimProperty& value, std::string_view nameSpace);
void appendReferenceParameter(Buffer& out, std::string_view name, core::CimInstance& target,
                              std::string_view nameSpace);
// An output parameter of an operation: <PARAMVALUE NAME= PARAMTYPE=><VALUE>...</VALUE></PARAMVALUE>
void appendOperationParameter(Buffer& out, std::string_view name, std::string_view type,
                              std::string_view text);

}  // namespace cimxml

#endif  // ORVEX_CIMXML_ANSWERWRITER_H_
