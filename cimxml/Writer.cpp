#include "cimxml/Writer.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "cimxml/Characters.h"
#include "cimxml/Values.h"
#include "core/CimPropertyList.h"
#include "core/CimPropertyRef.h"

namespace cimxml {
namespace {

constexpr std::string_view kReplacementCharacter = "\xEF\xBF\xBD";

// What a byte means to the escape: most stand for themselves, so that one look passes over them.
enum class Byte : std::uint8_t { Plain, Special, Multibyte };

constexpr std::array<Byte, 256> kBytes = [] {
  std::array<Byte, 256> bytes{};
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    bytes[i] = i < 0x20 ? Byte::Special : i < 0x80 ? Byte::Plain : Byte::Multibyte;
  }
  for (const char sign : {'&', '<', '>', '"', '\''}) {
    bytes[static_cast<unsigned char>(sign)] = Byte::Special;
  }
  return bytes;
}();

// Returns whether the eight bytes there are all plain: no ASCII character but those that stand for
// themselves. Each test marks the top bit of the bytes that it finds.
bool areAllPlain(const char* bytes) {
  constexpr std::uint64_t kOnes = 0x0101010101010101;
  constexpr std::uint64_t kTops = kOnes * 0x80;
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, sizeof(word));
  const auto findZeros = [](std::uint64_t value) { return (value - kOnes) & ~value & kTops; };
  const std::uint64_t controls = (word - kOnes * 0x20) & ~word & kTops;
  // Two signs that differ in one bit are found as one.
  const std::uint64_t quotes = findZeros(word ^ (kOnes * '"'));
  const std::uint64_t apostrophes = findZeros((word | kOnes) ^ (kOnes * '\''));    // and '&'
  const std::uint64_t brackets = findZeros((word | (kOnes * 2)) ^ (kOnes * '>'));  // and '<'
  return ((word & kTops) | controls | quotes | apostrophes | brackets) == 0;
}

constexpr std::string_view getReplacement(char sign) {
  switch (sign) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&apos;";
    case '\t':
      return "&#9;";
    case '\n':
      return "&#10;";
    case '\r':
      return "&#13;";
    default:
      return kReplacementCharacter;
  }
}

void beginAnswer(Buffer& out, std::string_view messageId, std::string_view element,
                 std::string_view name) {
  out +=
      "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
      "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE";
  appendAttribute(out, "ID", messageId);
  out += " PROTOCOLVERSION=\"1.0\"><SIMPLERSP><";
  out += element;
  appendAttribute(out, "NAME", name);
  out += '>';
}

void endAnswer(Buffer& out, std::string_view element) {
  appendEndTag(out, element);
  out += "</SIMPLERSP></MESSAGE></CIM>\n";
}

void beginParameter(Buffer& out, std::string_view name, std::string_view type) {
  out += "<PARAMVALUE";
  appendAttribute(out, "NAME", name);
  appendAttribute(out, "PARAMTYPE", type);
}

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
  } else if (!appendValue(out, key, nameSpace)) {
    // A key cannot be NULL: then it has the text that it has in an object path.
    out += "<KEYVALUE VALUETYPE=\"string\">";
    appendEscaped(out, key.toString());
    out += "</KEYVALUE>";
  }
  out += "</KEYBINDING>";
}

void appendReferenceTo(Buffer& out, const ObjectName& name, std::string_view nameSpace) {
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

void appendKey(Buffer& out, const KeyBinding& key, std::string_view nameSpace) {
  if (!key.name.empty()) {
    out += "<KEYBINDING";
    appendAttribute(out, "NAME", key.name);
    out += '>';
  }
  if (key.kind == KeyBinding::Kind::Reference && !key.reference.empty()) {
    appendReferenceTo(out, key.reference.front(), nameSpace);
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

}  // namespace

void appendEscaped(Buffer& out, std::string_view text) {
  std::size_t pending = 0;  // where the part begins that is taken as it is
  for (std::size_t at = 0; at < text.size();) {
    if (at + sizeof(std::uint64_t) <= text.size() && areAllPlain(text.data() + at)) {
      at += sizeof(std::uint64_t);
      continue;
    }
    const Byte byte = kBytes[static_cast<unsigned char>(text[at])];
    if (byte == Byte::Plain) {
      ++at;
      continue;
    }
    const std::size_t length =
        byte == Byte::Multibyte ? getCharacterLength(text.substr(at)) : std::size_t{0};
    if (length != 0) {
      at += length;
      continue;
    }
    out.append(text, pending, at - pending);
    out += getReplacement(text[at]);
    pending = ++at;
  }
  out.append(text, pending);
}

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

void appendError(Buffer& out, unsigned code, std::string_view description) {
  out += "<ERROR CODE=\"";
  appendNumber(out, code);
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

}  // namespace cimxml
