#include "cimxml/Request.h"

#include <algorithm>
#include <array>
#include <new>

#include "cimxml/Elements.h"
#include "cimxml/NameElements.h"
#include "cimxml/XmlCheck.h"
#include "core/ClassDeclaration.h"

namespace cimxml {
namespace {

// ---- values ----

void readNull(const pugi::xml_node& element) {
  Children(element).end();
}

StringArray readArray(const pugi::xml_node& element) {
  StringArray values;
  Children children(element);
  while (!children.isAtEnd()) {
    if (children.isAt("VALUE.NULL")) {
      readNull(children.take());
      values.emplace_back();
    } else {
      values.emplace_back(readText(children.take("VALUE")));
    }
  }
  return values;
}

std::vector<ObjectName> readReferences(const pugi::xml_node& element) {
  std::vector<ObjectName> names;
  Children children(element);
  while (!children.isAtEnd()) {
    if (children.isAt("VALUE.NULL")) {
      readNull(children.take());
      names.emplace_back();
    } else {
      names.push_back(readReference(children.take("VALUE.REFERENCE")));
    }
  }
  return names;
}

InstanceValue readInstance(const pugi::xml_node& element);
InstanceValue readNamedInstance(const pugi::xml_node& element);

struct ValueForm {
  std::string_view element;
  Value (*read)(const pugi::xml_node& element);
};

// Gives any of the readers the form that the table wants.
template <auto Read>
Value as(const pugi::xml_node& element) {
  return Read(element);
}

Value asNull(const pugi::xml_node& element) {
  readNull(element);
  return {};
}

// Declarations of classes and qualifiers: no operation that is served takes one.
Value asNothing(const pugi::xml_node&) {
  return {};
}

constexpr std::array kValueForms{
    ValueForm{"VALUE", as<readText>},
    ValueForm{"VALUE.ARRAY", as<readArray>},
    ValueForm{"VALUE.NULL", asNull},
    ValueForm{"VALUE.REFERENCE", as<readReference>},
    ValueForm{"VALUE.REFARRAY", as<readReferences>},
    ValueForm{"CLASSNAME", as<readClassName>},
    ValueForm{"INSTANCENAME", as<readInstanceName>},
    ValueForm{"INSTANCE", as<readInstance>},
    ValueForm{"VALUE.NAMEDINSTANCE", as<readNamedInstance>},
    ValueForm{"CLASS", asNothing},
    ValueForm{"QUALIFIER.DECLARATION", asNothing},
};

// The one value in an element, NULL where there is none.
Value readValue(Children& children) {
  if (children.isAtEnd()) {
    return {};
  }
  const pugi::xml_node element = children.take();
  const std::string_view kind = element.name();
  const auto* form = std::find_if(kValueForms.begin(), kValueForms.end(),
                                  [kind](const ValueForm& entry) { return entry.element == kind; });
  if (form == kValueForms.end()) {
    refuse(describe(element) + " is no value");
  }
  Value value = form->read(element);
  children.end();
  return value;
}

struct PropertyForm {
  std::string_view element;
  const char* value;  // the element of its value
  bool isArray;
  const char* type;  // null: the attribute TYPE says it
};

constexpr std::array kPropertyForms{
    PropertyForm{"PROPERTY", "VALUE", false, nullptr},
    PropertyForm{"PROPERTY.ARRAY", "VALUE.ARRAY", true, nullptr},
    PropertyForm{"PROPERTY.REFERENCE", "VALUE.REFERENCE", false, "reference"},
};

PropertyValue readProperty(const pugi::xml_node& element) {
  const std::string_view kind = element.name();
  const auto* form =
      std::find_if(kPropertyForms.begin(), kPropertyForms.end(),
                   [kind](const PropertyForm& entry) { return entry.element == kind; });
  if (form == kPropertyForms.end()) {
    refuse(describe(element) + " is no property");
  }
  PropertyValue property;
  property.name = getAttribute(element, "NAME");
  property.type = form->type != nullptr ? form->type : element.attribute("TYPE").value();
  property.isArray = form->isArray;
  Children children(element);
  children.skipAll("QUALIFIER");
  if (!children.isAtEnd() && !children.isAt(form->value) && !children.isAt("VALUE.NULL")) {
    refuse(describe(element) + " holds no <" + form->value + ">");
  }
  property.value = readValue(children);
  return property;
}

InstanceValue readInstance(const pugi::xml_node& element) {
  InstanceValue instance;
  instance.name.className = getAttribute(element, "CLASSNAME");
  Children children(element);
  children.skipAll("QUALIFIER");
  while (!children.isAtEnd()) {
    instance.properties.push_back(readProperty(children.take()));
  }
  return instance;
}

InstanceValue readNamedInstance(const pugi::xml_node& element) {
  Children children(element);
  ObjectName name = readInstanceName(children.take("INSTANCENAME"));
  InstanceValue instance = readInstance(children.take("INSTANCE"));
  children.end();
  if (!core::isSameName(name.className, instance.name.className)) {
    refuse("an instance of " + instance.name.className + " under the name of " + name.className);
  }
  instance.name = std::move(name);
  return instance;
}

// ---- requests ----

std::vector<Parameter> readParameters(Children& children, const char* element) {
  std::vector<Parameter> parameters;
  while (!children.isAtEnd()) {
    const pugi::xml_node node = children.take(element);
    Children values(node);
    parameters.push_back(
        {getAttribute(node, "NAME"), node.attribute("PARAMTYPE").value(), readValue(values)});
  }
  return parameters;
}

void readOperation(const pugi::xml_node& element, Request& request) {
  request.name = getAttribute(element, "NAME");
  Children children(element);
  request.nameSpace = readLocalNamespacePath(children.take("LOCALNAMESPACEPATH"));
  request.parameters = readParameters(children, "IPARAMVALUE");
}

void readMethod(const pugi::xml_node& element, Request& request) {
  request.isExtrinsic = true;
  request.name = getAttribute(element, "NAME");
  Children children(element);
  request.target = readName(children.isAt("LOCALCLASSPATH") ? children.take("LOCALCLASSPATH")
                                                            : children.take("LOCALINSTANCEPATH"));
  request.nameSpace = std::move(request.target.nameSpace);
  request.target.nameSpace.clear();
  request.parameters = readParameters(children, "PARAMVALUE");
}

void readSimpleRequest(const pugi::xml_node& element, Request& request) {
  Children children(element);
  children.skipAll("CORRELATOR");
  if (children.isAt("METHODCALL")) {
    readMethod(children.take(), request);
  } else {
    readOperation(children.take("IMETHODCALL"), request);
  }
  children.end();
}

struct RefusedMessage {
  std::string_view element;
  const char* cimError;
};

// The messages that a client may send to other servers. Answers are none, and not valid here.
constexpr std::array kRefusedMessages{
    RefusedMessage{"MULTIREQ", "multiple-requests-unsupported"},
    RefusedMessage{"MULTIEXPREQ", "multiple-requests-unsupported"},
    RefusedMessage{"SIMPLEEXPREQ", "unsupported-operation"},
};

// Throws unless the attribute is a version of the major number that `prefix` begins with.
void checkVersion(const pugi::xml_node& element, const char* attribute, std::string_view prefix,
                  const char* cimError) {
  const std::string_view version = getAttribute(element, attribute);
  if (!version.starts_with(prefix) || version.size() == prefix.size() ||
      version.find_first_not_of("0123456789.", prefix.size()) != std::string_view::npos) {
    throw RequestFault(RequestFault::Kind::Unsupported, cimError,
                       std::string(attribute) + " is " + std::string(version));
  }
}

Request readDocument(const pugi::xml_document& document) {
  Children roots(document);
  const pugi::xml_node root = roots.take("CIM");
  checkVersion(root, "CIMVERSION", "2.", "unsupported-cim-version");
  checkVersion(root, "DTDVERSION", "2.", "unsupported-dtd-version");
  Children parts(root);
  const pugi::xml_node message = parts.take("MESSAGE");
  parts.end();
  Request request;
  request.messageId = getAttribute(message, "ID");
  checkVersion(message, "PROTOCOLVERSION", "1.", "unsupported-protocol-version");
  Children contents(message);
  for (const RefusedMessage& refused : kRefusedMessages) {
    if (contents.isAt(refused.element)) {
      throw RequestFault(RequestFault::Kind::Unsupported, refused.cimError,
                         std::string(refused.element) + " is not served");
    }
  }
  readSimpleRequest(contents.take("SIMPLEREQ"), request);
  contents.end();
  return request;
}

// Returns where the root element begins.
std::size_t checkWellFormed(std::string_view body) {
  const XmlCheck check = checkXml(body);
  if (check.fault != XmlFault::None) {
    throw RequestFault(RequestFault::Kind::Malformed,
                       check.fault == XmlFault::NotTaken ? kNotValid : kNotWellFormed,
                       std::string(check.problem) + " at byte " + std::to_string(check.position));
  }
  return check.position;
}

}  // namespace

const Parameter* Request::find(std::string_view parameterName) const {
  const auto found = std::find_if(
      parameters.begin(), parameters.end(),
      [parameterName](const Parameter& one) { return core::isSameName(one.name, parameterName); });
  return found != parameters.end() ? &*found : nullptr;
}

Request parseRequest(std::string& body) {
  const std::size_t root = checkWellFormed(body);
  constexpr unsigned kOptions = pugi::parse_cdata | pugi::parse_escapes | pugi::parse_eol |
                                pugi::parse_wconv_attribute | pugi::parse_ws_pcdata;
  pugi::xml_document document;
  const pugi::xml_parse_result parsed = document.load_buffer_inplace(
      body.data() + root, body.size() - root, kOptions, pugi::encoding_utf8);
  if (parsed.status == pugi::status_out_of_memory) {
    throw std::bad_alloc();
  }
  if (parsed.status != pugi::status_ok) {
    throw RequestFault(RequestFault::Kind::Malformed, kNotWellFormed, parsed.description());
  }
  return readDocument(document);
}

}  // namespace cimxml
