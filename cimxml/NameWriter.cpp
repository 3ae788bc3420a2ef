#include "cimxml/NameWriter.h"

#include <optional>

#include "cimxml/ScalarText.h"
#include "core/CimPropertyList.h"
#include "core/ClassDeclaration.h"

namespace cimxml {
namespace {

void beginInstanceName(Buffer& out, std::string_view className) {
  out += "<INSTANCENAME";
  appendAttribute(out, "CLASSNAME", className);
  out += '>';
}

std::string_view getValueType(core::CimType type) {
  switch (type) {
    case core::kCimUint8:
    case core::kCimSint8:
    case core::kCimUint16:
    case core::kCimUint32:
    case core::kCimUint64:
      return "numeric";
    case core::kCimBoolean:
      return "boolean";
    case core::kCimString:
    case core::kCimDatetime:
    case core::kCimReference:
    case core::kCimUint16Array:
    case core::kCimStringArray:
      return "string";
  }
  return {};
}

std::string_view getValueType(KeyBinding::Kind kind) {
  switch (kind) {
    case KeyBinding::Kind::Numeric:
      return "numeric";
    case KeyBinding::Kind::Boolean:
      return "boolean";
    case KeyBinding::Kind::String:
    case KeyBinding::Kind::Reference:
      return "string";
  }
  return {};
}

void appendKey(Buffer& out, const core::CimProperty& key, std::string_view nameSpace) {
  const auto type = static_cast<core::CimType>(key.getType());
  out += "<KEYBINDING NAME=\"";
  out += key.getName();  // an identifier, with nothing in it to escape
  if (type == core::kCimString) {
    out += "\"><KEYVALUE VALUETYPE=\"string\" TYPE=\"string\">";
    appendScalarText(out, key);
    out += "</KEYVALUE></KEYBINDING>";
    return;
  }
  out += "\">";
  if (type != core::kCimReference) {
    out += "<KEYVALUE";
    appendAttribute(out, "VALUETYPE", getValueType(type));
    appendAttribute(out, "TYPE", core::getTypeName(type));
    out += '>';
    appendScalarText(out, key);
    out += "</KEYVALUE>";
  } else if (key.isNull() ||
             !appendReference(out, static_cast<const core::CimPropertyRef&>(key), nameSpace)) {
    // A key cannot be NULL: then it has the text that it has in an object path.
    out += "<KEYVALUE VALUETYPE=\"string\">";
    appendEscaped(out, key.toString());
    out += "</KEYVALUE>";
  }
  out += "</KEYBINDING>";
}

void appendKey(Buffer& out, const KeyBinding& key, std::string_view nameSpace) {
  if (!key.name.empty()) {
    out += "<KEYBINDING";
    appendAttribute(out, "NAME", key.name);
    out += '>';
  }
  if (key.kind == KeyBinding::Kind::Reference && !key.reference.empty()) {
    appendReference(out, key.reference.front(), nameSpace);
  } else {
    out += "<KEYVALUE";
    appendAttribute(out, "VALUETYPE", getValueType(key.kind));
    out += '>';
    appendEscaped(out, key.text);
    out += "</KEYVALUE>";
  }
  if (!key.name.empty()) {
    out += "</KEYBINDING>";
  }
}

void beginLocalPath(Buffer& out, std::string_view nameSpace) {
  out += "<VALUE.REFERENCE><LOCALINSTANCEPATH>";
  appendLocalNamespacePath(out, nameSpace);
}

void endLocalPath(Buffer& out) {
  out += "</LOCALINSTANCEPATH></VALUE.REFERENCE>";
}

}  // namespace

void appendLocalNamespacePath(Buffer& out, std::string_view nameSpace) {
  out += "<LOCALNAMESPACEPATH>";
  while (!nameSpace.empty()) {
    const std::string_view part = nameSpace.substr(0, nameSpace.find('/'));
    nameSpace.remove_prefix(part.size() < nameSpace.size() ? part.size() + 1 : part.size());
    if (!part.empty()) {
      out += "<NAMESPACE";
      appendAttribute(out, "NAME", part);
      out += "/>";
    }
  }
  out += "</LOCALNAMESPACEPATH>";
}

void appendNamespacePath(Buffer& out, std::string_view host, std::string_view nameSpace) {
  out += "<NAMESPACEPATH><HOST>";
  appendEscaped(out, host);
  out += "</HOST>";
  appendLocalNamespacePath(out, nameSpace);
  out += "</NAMESPACEPATH>";
}

void appendClassName(Buffer& out, std::string_view className) {
  out += "<CLASSNAME";
  appendAttribute(out, "NAME", className);
  out += "/>";
}

void appendInstanceName(Buffer& out, core::CimInstance& instance, std::string_view nameSpace) {
  Properties properties;
  instance.getProperties().copyTo(properties);
  appendInstanceName(out, instance.getClassName(), properties, nameSpace);
}

void appendInstanceName(Buffer& out, std::string_view className, const Properties& properties,
                        std::string_view nameSpace) {
  beginInstanceName(out, className);
  for (const core::CimProperty* property : properties) {
    if (property->isKey()) {
      appendKey(out, *property, nameSpace);
    }
  }
  appendEndTag(out, "INSTANCENAME");
}

void appendInstanceName(Buffer& out, const ObjectName& name, std::string_view nameSpace) {
  beginInstanceName(out, name.className);
  for (const KeyBinding& key : name.keys) {
    appendKey(out, key, nameSpace);
  }
  appendEndTag(out, "INSTANCENAME");
}

void appendInstancePath(Buffer& out, core::CimInstance& instance, std::string_view host,
                        std::string_view nameSpace) {
  Properties properties;
  instance.getProperties().copyTo(properties);
  appendInstancePath(out, instance.getClassName(), properties, host, nameSpace);
}

void appendInstancePath(Buffer& out, std::string_view className, const Properties& properties,
                        std::string_view host, std::string_view nameSpace) {
  out += "<INSTANCEPATH>";
  appendNamespacePath(out, host, nameSpace);
  appendInstanceName(out, className, properties, nameSpace);
  out += "</INSTANCEPATH>";
}

void appendClassPath(Buffer& out, std::string_view className, std::string_view host,
                     std::string_view nameSpace) {
  out += "<CLASSPATH>";
  appendNamespacePath(out, host, nameSpace);
  appendClassName(out, className);
  out += "</CLASSPATH>";
}

bool appendReference(Buffer& out, const core::CimPropertyRef& reference,
                     std::string_view nameSpace) {
  if (core::CimInstance* target = reference.getTarget(); target != nullptr) {
    beginLocalPath(out, nameSpace);
    appendInstanceName(out, *target, nameSpace);
    endLocalPath(out);
    return true;
  }
  const std::optional<ObjectName> name = readObjectPath(reference.toString());
  if (!name || !name->isInstance) {
    return false;
  }
  const std::string_view where = name->nameSpace.empty() ? nameSpace : name->nameSpace;
  beginLocalPath(out, where);
  appendInstanceName(out, *name, where);
  endLocalPath(out);
  return true;
}

void appendReference(Buffer& out, const ObjectName& name, std::string_view nameSpace) {
  const std::string_view where = name.nameSpace.empty() ? nameSpace : name.nameSpace;
  const std::string_view kind = name.isInstance ? "INSTANCE" : "CLASS";
  const std::string_view locality = name.host.empty() ? "LOCAL" : "";
  out += "<VALUE.REFERENCE>";
  if (!where.empty()) {
    ((out += '<') += locality) += kind;
    out += "PATH>";
    if (name.host.empty()) {
      appendLocalNamespacePath(out, where);
    } else {
      appendNamespacePath(out, name.host, where);
    }
  }
  if (name.isInstance) {
    appendInstanceName(out, name, where);
  } else {
    appendClassName(out, name.className);
  }
  if (!where.empty()) {
    ((out += "</") += locality) += kind;
    out += "PATH>";
  }
  out += "</VALUE.REFERENCE>";
}

}  // namespace cimxml
