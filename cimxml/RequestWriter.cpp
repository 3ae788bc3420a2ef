#include "cimxml/RequestWriter.h"

#include <cstddef>

#include "cimxml/Values.h"
#include "core/ClassDeclaration.h"

namespace cimxml {
namespace {

constexpr std::string_view kValueTypes[] = {"string", "numeric", "boolean", "string"};

void beginMessage(Buffer& out, std::string_view messageId) {
  out +=
      "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
      "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE";
  appendAttribute(out, "ID", messageId);
  out += " PROTOCOLVERSION=\"1.0\"><SIMPLEREQ>";
}

void endMessage(Buffer& out) {
  out += "</SIMPLEREQ></MESSAGE></CIM>\n";
}

void appendLocalPath(Buffer& out, const ObjectName& instance, std::string_view nameSpace);

void appendKey(Buffer& out, const KeyBinding& key, std::string_view nameSpace) {
  out += "<KEYBINDING";
  appendAttribute(out, "NAME", key.name);
  out += '>';
  if (key.kind == KeyBinding::Kind::Reference) {
    out += "<VALUE.REFERENCE>";
    appendLocalPath(out, key.reference.at(0), nameSpace);
    out += "</VALUE.REFERENCE>";
  } else {
    out += "<KEYVALUE";
    appendAttribute(out, "VALUETYPE", kValueTypes[static_cast<std::size_t>(key.kind)]);
    out += '>';
    appendEscaped(out, key.text);
    out += "</KEYVALUE>";
  }
  out += "</KEYBINDING>";
}

void appendName(Buffer& out, const ObjectName& instance, std::string_view nameSpace) {
  out += "<INSTANCENAME";
  appendAttribute(out, "CLASSNAME", instance.className);
  out += '>';
  for (const KeyBinding& key : instance.keys) {
    appendKey(out, key, nameSpace);
  }
  out += "</INSTANCENAME>";
}

void appendLocalPath(Buffer& out, const ObjectName& instance, std::string_view nameSpace) {
  const std::string_view own = instance.nameSpace.empty() ? nameSpace : instance.nameSpace;
  out += "<LOCALINSTANCEPATH>";
  appendLocalNamespacePath(out, own);
  appendName(out, instance, own);
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
  beginMessage(out, messageId);
  out += "<IMETHODCALL";
  appendAttribute(out, "NAME", operation);
  out += '>';
  appendLocalNamespacePath(out, nameSpace);
}

void endOperationRequest(Buffer& out) {
  out += "</IMETHODCALL>";
  endMessage(out);
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
  appendName(out, instance, nameSpace);
  out += "</IPARAMVALUE>";
}

void appendBooleanParameter(Buffer& out, std::string_view name, bool value) {
  beginParameter(out, "IPARAMVALUE", name);
  out += '>';
  out += value ? "<VALUE>TRUE</VALUE>" : "<VALUE>FALSE</VALUE>";
  out += "</IPARAMVALUE>";
}

void beginMethodRequest(Buffer& out, std::string_view messageId, std::string_view nameSpace,
                        std::string_view method, const ObjectName& target) {
  beginMessage(out, messageId);
  out += "<METHODCALL";
  appendAttribute(out, "NAME", method);
  out += '>';
  appendLocalPath(out, target, nameSpace);
}

void endMethodRequest(Buffer& out) {
  out += "</METHODCALL>";
  endMessage(out);
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
  appendAttribute(out, "PARAMTYPE", "reference");
  if (target == nullptr) {
    out += "/>";
    return;
  }
  out += "><VALUE.REFERENCE>";
  appendLocalPath(out, *target, nameSpace);
  out += "</VALUE.REFERENCE></PARAMVALUE>";
}

}  // namespace cimxml
