#include "cimxml/Response.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <new>
#include <pugixml.hpp>
#include <string_view>

#include "cimxml/XmlCheck.h"

namespace cimxml {
namespace {

using Node = pugi::xml_node;

// Text is kept as it is, also where it is blanks alone.
constexpr unsigned kParseOptions = pugi::parse_default | pugi::parse_ws_pcdata_single;

// References among keys may hold references among keys, but not without end.
constexpr unsigned kMaxNesting = 16;

bool is(const Node& node, std::string_view name) {
  return name == node.name();
}

std::string attribute(const Node& node, const char* name) {
  return node.attribute(name).value();
}

std::string textOf(const Node& node) {
  std::string text;
  for (const Node& child : node.children()) {
    if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata) {
      text += child.value();
    }
  }
  return text;
}

Node demandChild(const Node& node, const char* name) {
  const Node child = node.child(name);
  if (!child) {
    throw ResponseFault("the element " + std::string(node.name()) + " holds no " + name);
  }
  return child;
}

// ---- names

ObjectName readName(const Node& node, unsigned depth);

KeyBinding readKey(const Node& node, std::string name, unsigned depth) {
  KeyBinding key;
  key.name = std::move(name);
  if (is(node, "VALUE.REFERENCE")) {
    key.kind = KeyBinding::Kind::Reference;
    key.reference.push_back(readName(node.first_child(), depth + 1));
    return key;
  }
  const std::string type = attribute(node, "VALUETYPE");
  key.kind = type == "numeric"   ? KeyBinding::Kind::Numeric
             : type == "boolean" ? KeyBinding::Kind::Boolean
                                 : KeyBinding::Kind::String;
  key.text = textOf(node);
  return key;
}

void readKeys(ObjectName& name, const Node& node, unsigned depth) {
  name.className = attribute(node, "CLASSNAME");
  name.isInstance = true;
  for (const Node& child : node.children()) {
    if (is(child, "KEYBINDING")) {
      const Node value = child.find_child(
          [](const Node& part) { return is(part, "KEYVALUE") || is(part, "VALUE.REFERENCE"); });
      if (!value) {
        throw ResponseFault("a KEYBINDING holds no value");
      }
      name.keys.push_back(readKey(value, attribute(child, "NAME"), depth));
    } else if (is(child, "KEYVALUE") || is(child, "VALUE.REFERENCE")) {
      name.keys.push_back(readKey(child, "", depth));
    }
  }
}

std::string readNamespace(const Node& localPath) {
  std::string path;
  for (const Node& part : localPath.children("NAMESPACE")) {
    path += (path.empty() ? "" : "/") + attribute(part, "NAME");
  }
  return path;
}

// Reads a CLASSNAME, an INSTANCENAME, or any of the paths that hold one.
ObjectName readName(const Node& node, unsigned depth = 0) {
  if (depth > kMaxNesting) {
    throw ResponseFault("a name holds names without end");
  }
  ObjectName name;
  const Node place = node.child("NAMESPACEPATH");
  name.host = textOf(place.child("HOST"));
  name.nameSpace = readNamespace((place ? place : node).child("LOCALNAMESPACEPATH"));
  const Node plain = is(node, "INSTANCENAME") || is(node, "CLASSNAME")
                         ? node
                         : node.find_child([](const Node& part) {
                             return is(part, "INSTANCENAME") || is(part, "CLASSNAME");
                           });
  if (!plain) {
    throw ResponseFault("the element '" + std::string(node.name()) + "' names no object");
  }
  if (is(plain, "INSTANCENAME")) {
    readKeys(name, plain, depth);
  } else {
    name.className = attribute(plain, "NAME");
  }
  return name;
}

bool isName(const Node& node) {
  constexpr std::string_view kNames[] = {"CLASSNAME",    "CLASSPATH",    "LOCALCLASSPATH",
                                         "INSTANCENAME", "INSTANCEPATH", "LOCALINSTANCEPATH"};
  return std::find(std::begin(kNames), std::end(kNames), node.name()) != std::end(kNames);
}

// ---- values

StringArray readArray(const Node& node) {
  StringArray values;
  for (const Node& child : node.children()) {
    if (is(child, "VALUE")) {
      values.emplace_back(textOf(child));
    } else if (is(child, "VALUE.NULL")) {
      values.emplace_back(std::nullopt);
    }
  }
  return values;
}

std::vector<ObjectName> readReferences(const Node& node) {
  std::vector<ObjectName> names;
  for (const Node& child : node.children("VALUE.REFERENCE")) {
    names.push_back(readName(child.first_child()));
  }
  return names;
}

// Reads the value inside a property or a parameter; NULL where there is none of a known kind.
Value readValue(const Node& node) {
  for (const Node& child : node.children()) {
    if (is(child, "VALUE")) {
      return textOf(child);
    }
    if (is(child, "VALUE.ARRAY")) {
      return readArray(child);
    }
    if (is(child, "VALUE.REFERENCE")) {
      return readName(child.first_child());
    }
    if (is(child, "VALUE.REFARRAY")) {
      return readReferences(child);
    }
    if (isName(child)) {
      return readName(child);
    }
  }
  return std::monostate();
}

struct PropertyElement {
  std::string_view name;
  bool isArray;
  bool isReference;
};

constexpr PropertyElement kPropertyElements[] = {
    {"PROPERTY", false, false},
    {"PROPERTY.ARRAY", true, false},
    {"PROPERTY.REFERENCE", false, true},
};

const PropertyElement* findPropertyElement(const Node& node) {
  for (const PropertyElement& element : kPropertyElements) {
    if (is(node, element.name)) {
      return &element;
    }
  }
  return nullptr;
}

std::string readType(const PropertyElement& element, const Node& node) {
  return element.isReference ? "reference" : attribute(node, "TYPE");
}

InstanceValue readInstance(const Node& node) {
  InstanceValue instance;
  instance.name.className = attribute(node, "CLASSNAME");
  for (const Node& child : node.children()) {
    if (const PropertyElement* element = findPropertyElement(child)) {
      instance.properties.push_back({attribute(child, "NAME"), readType(*element, child),
                                     element->isArray, readValue(child)});
    }
  }
  return instance;
}

ClassValue readClass(const Node& node) {
  ClassValue result;
  result.name = attribute(node, "NAME");
  result.superclass = attribute(node, "SUPERCLASS");
  for (const Node& child : node.children()) {
    if (const PropertyElement* element = findPropertyElement(child)) {
      result.properties.push_back(
          {attribute(child, "NAME"), readType(*element, child), element->isArray});
    }
  }
  return result;
}

// ---- answers

ErrorValue readError(const Node& node) {
  const std::string code = attribute(node, "CODE");
  ErrorValue error;
  const auto [stop, failure] = std::from_chars(code.data(), code.data() + code.size(), error.code);
  if (failure != std::errc() || stop != code.data() + code.size()) {
    throw ResponseFault("the ERROR has no code");
  }
  error.description = attribute(node, "DESCRIPTION");
  return error;
}

bool isObjectWithName(const Node& node) {
  constexpr std::string_view kElements[] = {"VALUE.NAMEDINSTANCE",       "VALUE.INSTANCEWITHPATH",
                                            "VALUE.OBJECTWITHPATH",      "VALUE.NAMEDOBJECT",
                                            "VALUE.OBJECTWITHLOCALPATH", "VALUE.OBJECT"};
  return std::find(std::begin(kElements), std::end(kElements), node.name()) != std::end(kElements);
}

InstanceValue readNamedInstance(const Node& node) {
  InstanceValue instance = readInstance(demandChild(node, "INSTANCE"));
  if (const Node name = node.find_child(isName)) {
    instance.name = readName(name);
  }
  return instance;
}

void readObjects(Response& response, const Node& returned) {
  for (const Node& child : returned.children()) {
    if (isObjectWithName(child)) {
      response.instances.push_back(readNamedInstance(child));
    } else if (is(child, "INSTANCE")) {
      response.instances.push_back(readInstance(child));
    } else if (is(child, "CLASS")) {
      response.classes.push_back(readClass(child));
    } else if (is(child, "OBJECTPATH")) {
      response.names.push_back(readName(child.first_child()));
    } else if (isName(child)) {
      response.names.push_back(readName(child));
    }
  }
}

void readOutput(Response& response, const Node& node) {
  response.outputs.push_back(
      {attribute(node, "NAME"), attribute(node, "PARAMTYPE"), readValue(node)});
}

void readParts(Response& response, const Node& answer) {
  for (const Node& child : answer.children()) {
    if (is(child, "ERROR")) {
      response.error = readError(child);
    } else if (is(child, "IRETURNVALUE")) {
      readObjects(response, child);
    } else if (is(child, "RETURNVALUE")) {
      response.returnValue = textOf(child.child("VALUE"));
    } else if (is(child, "PARAMVALUE")) {
      readOutput(response, child);
    }
  }
}

}  // namespace

Response parseResponse(std::string& body) {
  const XmlCheck check = checkXml(body);
  if (check.fault != XmlFault::None) {
    throw ResponseFault("it is no XML that can be read: " + std::string(check.problem));
  }
  pugi::xml_document document;
  const pugi::xml_parse_result parsed =
      document.load_buffer_inplace(body.data(), body.size(), kParseOptions);
  if (parsed.status == pugi::status_out_of_memory) {
    throw std::bad_alloc();
  }
  if (!parsed) {
    throw ResponseFault(std::string("it is no XML that can be read: ") + parsed.description());
  }
  const Node root = document.document_element();
  if (!is(root, "CIM")) {
    throw ResponseFault("its outermost element is " + std::string(root.name()) + ", not CIM");
  }
  const Node message = demandChild(root, "MESSAGE");
  const Node simple = demandChild(message, "SIMPLERSP");
  Response response;
  response.messageId = attribute(message, "ID");
  Node answer = simple.child("IMETHODRESPONSE");
  if (!answer) {
    answer = demandChild(simple, "METHODRESPONSE");
    response.isExtrinsic = true;
  }
  response.name = attribute(answer, "NAME");
  readParts(response, answer);
  return response;
}

}  // namespace cimxml
