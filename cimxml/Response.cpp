#include "cimxml/Response.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <new>
#include <pugixml.hpp>
#include <span>
#include <string_view>

#include "cimxml/Elements.h"
#include "cimxml/NameElements.h"
#include "cimxml/XmlCheck.h"

namespace cimxml {
namespace {

using Node = pugi::xml_node;

// Text is kept as it is, also where it is blanks alone.
constexpr unsigned kParseOptions = pugi::parse_default | pugi::parse_ws_pcdata;

bool is(const Node& node, std::string_view name) {
  return name == node.name();
}

std::string attribute(const Node& node, const char* name) {
  return node.attribute(name).value();
}

Node demandChild(const Node& node, const char* name) {
  const Node child = node.child(name);
  if (!child) {
    refuse(describe(node) + " lacks <" + name + ">");
  }
  return child;
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
      values.emplace_back(readText(child));
    } else if (is(child, "VALUE.NULL")) {
      values.emplace_back(std::nullopt);
    }
  }
  return values;
}

std::vector<ObjectName> readReferences(const Node& node) {
  std::vector<ObjectName> names;
  for (const Node& child : node.children("VALUE.REFERENCE")) {
    names.push_back(readReference(child));
  }
  return names;
}

// Reads the value inside a property or a parameter; NULL where there is none of a known kind.
Value readValue(const Node& node) {
  for (const Node& child : node.children()) {
    if (is(child, "VALUE")) {
      return readText(child);
    }
    if (is(child, "VALUE.ARRAY")) {
      return readArray(child);
    }
    if (is(child, "VALUE.REFERENCE")) {
      return readReference(child);
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

constexpr PropertyElement kParameterElements[] = {
    {"PARAMETER", false, false},
    {"PARAMETER.ARRAY", true, false},
    {"PARAMETER.REFERENCE", false, true},
    {"PARAMETER.REFARRAY", true, true},
};

const PropertyElement* findElement(std::span<const PropertyElement> elements, const Node& node) {
  for (const PropertyElement& element : elements) {
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
    if (const PropertyElement* element = findElement(kPropertyElements, child)) {
      instance.properties.push_back({attribute(child, "NAME"), readType(*element, child),
                                     element->isArray, readValue(child)});
    }
  }
  return instance;
}

std::vector<ClassValue::Qualifier> readQualifiers(const Node& node) {
  std::vector<ClassValue::Qualifier> qualifiers;
  for (const Node& child : node.children("QUALIFIER")) {
    ClassValue::Qualifier& added = qualifiers.emplace_back();
    added.name = attribute(child, "NAME");
    if (const Node array = child.child("VALUE.ARRAY")) {
      added.values = readArray(array);
    } else if (const Node value = child.child("VALUE")) {
      added.values.emplace_back(readText(value));
    }
  }
  return qualifiers;
}

ClassValue::Property readDeclared(const PropertyElement& element, const Node& node) {
  return {attribute(node, "NAME"), readType(element, node), element.isArray,
          attribute(node, "REFERENCECLASS"), readQualifiers(node)};
}

ClassValue::Method readMethod(const Node& node) {
  ClassValue::Method method{
      attribute(node, "NAME"), attribute(node, "TYPE"), readQualifiers(node), {}};
  for (const Node& child : node.children()) {
    if (const PropertyElement* element = findElement(kParameterElements, child)) {
      method.parameters.push_back(readDeclared(*element, child));
    }
  }
  return method;
}

ClassValue readClass(const Node& node) {
  ClassValue result;
  result.name = attribute(node, "NAME");
  result.superclass = attribute(node, "SUPERCLASS");
  result.qualifiers = readQualifiers(node);
  for (const Node& child : node.children()) {
    if (const PropertyElement* element = findElement(kPropertyElements, child)) {
      result.properties.push_back(readDeclared(*element, child));
    } else if (is(child, "METHOD")) {
      result.methods.push_back(readMethod(child));
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
    refuse("the error has no code");
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
      response.names.push_back(readReference(child));
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
      response.returnValue = readText(demandChild(child, "VALUE"));
    } else if (is(child, "PARAMVALUE")) {
      readOutput(response, child);
    }
  }
}

Response readMessage(const pugi::xml_document& document) {
  const Node root = document.document_element();
  if (!is(root, "CIM")) {
    refuse(describe(root) + " is no CIM");
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

}  // namespace

Response parseResponse(std::string& body) {
  const XmlCheck check = checkXml(body);
  if (check.fault != XmlFault::None) {
    throw ResponseFault(std::string("it cannot be read as XML: ") + check.problem);
  }
  pugi::xml_document document;
  const pugi::xml_parse_result parsed =
      document.load_buffer_inplace(body.data(), body.size(), kParseOptions, pugi::encoding_utf8);
  if (parsed.status == pugi::status_out_of_memory) {
    throw std::bad_alloc();
  }
  if (!parsed) {
    throw ResponseFault(std::string("it cannot be read as XML: ") + parsed.description());
  }
  try {
    return readMessage(document);
  } catch (const RequestFault& fault) {  // what the readers throw that requests have, too
    throw ResponseFault(fault.what());
  }
}

}  // namespace cimxml
