#include "cimxml/AnswerWriter.h"

#include "cimxml/MessageFrame.h"
#include "cimxml/NameWriter.h"
#include "cimxml/Values.h"
#include "core/ClassDeclaration.h"

namespace cimxml {
namespace {

void beginAnswer(Buffer& out, std::string_view messageId, std::string_view element,
                 std::string_view name) {
  beginMessage(out, messageId);
  out += "<SIMPLERSP><";
  out += element;
  appendAttribute(out, "NAME", name);
  out += '>';
}

void endAnswer(Buffer& out, std::string_view element) {
  appendEndTag(out, element);
  out += "</SIMPLERSP>";
  endMessage(out);
}

void beginParameter(Buffer& out, std::string_view name, std::string_view type) {
  out += "<PARAMVALUE";
  appendAttribute(out, "NAME", name);
  appendAttribute(out, "PARAMTYPE", type);
}

}  // namespace

void beginOperationAnswer(Buffer& out, std::string_view messageId, std::string_view operation) {
  beginAnswer(out, messageId, "IMETHODRESPONSE", operation);
}

void endOperationAnswer(Buffer& out) {
  endAnswer(out, "IMETHODRESPONSE");
}

void beginMethodAnswer(Buffer& out, std::string_view messageId, std::string_view method) {
  beginAnswer(out, messageId, "METHODRESPONSE", method);
}

void endMethodAnswer(Buffer& out) {
  endAnswer(out, "METHODRESPONSE");
}

void appendError(Buffer& out, StatusCode code, std::string_view description) {
  out += "<ERROR CODE=\"";
  appendNumber(out, static_cast<unsigned>(code));
  out += '"';
  appendAttribute(out, "DESCRIPTION", description);
  out += "/>";
}

void beginReturnValue(Buffer& out) {
  out += "<IRETURNVALUE>";
}

void endReturnValue(Buffer& out) {
  out += "</IRETURNVALUE>";
}

void appendMethodReturnValue(Buffer& out, std::uint32_t value) {
  out += "<RETURNVALUE PARAMTYPE=\"uint32\"><VALUE>";
  appendNumber(out, value);
  out += "</VALUE></RETURNVALUE>";
}

void appendOutputParameter(Buffer& out, const core::CimProperty& value,
                           std::string_view nameSpace) {
  beginParameter(out, value.getName(),
                 core::getTypeName(static_cast<core::CimType>(value.getType())));
  out += '>';
  appendValue(out, value, nameSpace);
  appendEndTag(out, "PARAMVALUE");
}

void appendReferenceParameter(Buffer& out, std::string_view name, core::CimInstance& target,
                              std::string_view nameSpace) {
  beginParameter(out, name, core::getTypeName(core::kCimReference));
  out += "><VALUE.REFERENCE><LOCALINSTANCEPATH>";
  appendLocalNamespacePath(out, nameSpace);
  appendInstanceName(out, target, nameSpace);
  out += "</LOCALINSTANCEPATH></VALUE.REFERENCE></PARAMVALUE>";
}

void appendOperationParameter(Buffer& out, std::string_view name, std::string_view type,
                              std::string_view text) {
  beginParameter(out, name, type);
  out += "><VALUE>";
  appendEscaped(out, text);
  out += "</VALUE></PARAMVALUE>";
}

void appendClassParameter(Buffer& out, std::string_view name,
                          const core::ClassDeclaration& declaration, const ClassFormat& format) {
  out += "<PARAMVALUE";
  appendAttribute(out, "NAME", name);
  out += '>';
  appendClass(out, declaration, format);
  appendEndTag(out, "PARAMVALUE");
}

}  // namespace cimxml
