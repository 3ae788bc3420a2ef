#include "cimxml/RequestWriter.h"

#include "cimxml/MessageFrame.h"
#include "cimxml/NameWriter.h"
#include "cimxml/Values.h"
#include "core/ClassDeclaration.h"

namespace cimxml {
namespace {

void beginRequest(Buffer& out, std::string_view messageId) {
  beginMessage(out, messageId);
  out += "<SIMPLEREQ>";
}

void endRequest(Buffer& out) {
  out += "</SIMPLEREQ>";
  endMessage(out);
}

void appendLocalPath(Buffer& out, const ObjectName& instance, std::string_view nameSpace) {
  const std::string_view own = instance.nameSpace.empty() ? nameSpace : instance.nameSpace;
  out += "<LOCALINSTANCEPATH>";
  appendLocalNamespacePath(out, own);
  appendInstanceName(out, instance, own);
  out += "</LOCALINSTANCEPATH>";
}

void beginParameter(Buffer& out, std::string_view element, std::string_view name) {
  out += '<';
  out += element;
  appendAttribute(out, "NAME", name);
}

}  // namespace

void beginOperationRequest(Buffer& out, std::string_view messageId, std::string_view nameSpace,
                           std::string_view operation) {
  beginRequest(out, messageId);
  out += "<IMETHODCALL";
  appendAttribute(out, "NAME", operation);
  out += '>';
  appendLocalNamespacePath(out, nameSpace);
}

void endOperationRequest(Buffer& out) {
  out += "</IMETHODCALL>";
  endRequest(out);
}

void appendClassNameParameter(Buffer& out, std::string_view name, std::string_view className) {
  beginParameter(out, "IPARAMVALUE", name);
  out += '>';
  appendClassName(out, className);
  out += "</IPARAMVALUE>";
}

void appendInstanceNameParameter(Buffer& out, std::string_view name, const ObjectName& instance,
                                 std::string_view nameSpace) {
  beginParameter(out, "IPARAMVALUE", name);
  out += '>';
  appendInstanceName(out, instance, nameSpace);
  out += "</IPARAMVALUE>";
}

void appendBooleanParameter(Buffer& out, std::string_view name, bool value) {
  beginParameter(out, "IPARAMVALUE", name);
  out += '>';
  out += value ? "<VALUE>TRUE</VALUE>" : "<VALUE>FALSE</VALUE>";
  out += "</IPARAMVALUE>";
}

void appendStringParameter(Buffer& out, std::string_view name, std::string_view value) {
  beginParameter(out, "IPARAMVALUE", name);
  out += "><VALUE>";
  appendEscaped(out, value);
  out += "</VALUE></IPARAMVALUE>";
}

void beginMethodRequest(Buffer& out, std::string_view messageId, std::string_view nameSpace,
                        std::string_view method, const ObjectName& target) {
  beginRequest(out, messageId);
  out += "<METHODCALL";
  appendAttribute(out, "NAME", method);
  out += '>';
  appendLocalPath(out, target, nameSpace);
}

void endMethodRequest(Buffer& out) {
  out += "</METHODCALL>";
  endRequest(out);
}

void appendArgument(Buffer& out, const core::CimProperty& value) {
  beginParameter(out, "PARAMVALUE", value.getName());
  appendAttribute(out, "PARAMTYPE", core::getTypeName(static_cast<core::CimType>(value.getType())));
  out += '>';
  appendValue(out, value, "");
  out += "</PARAMVALUE>";
}

void appendReferenceArgument(Buffer& out, std::string_view name, const ObjectName* target,
                             std::string_view nameSpace) {
  beginParameter(out, "PARAMVALUE", name);
  appendAttribute(out, "PARAMTYPE", core::getTypeName(core::kCimReference));
  if (target == nullptr) {
    out += "/>";
    return;
  }
  out += '>';
  appendReference(out, *target, nameSpace);
  out += "</PARAMVALUE>";
}

}  // namespace cimxml
