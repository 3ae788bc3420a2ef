#include "cimxml/NameElements.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "cimxml/Elements.h"

namespace cimxml {
namespace {

struct KeyKind {
  std::string_view name;  // of a VALUETYPE, or the TYPE that stands for one
  KeyBinding::Kind kind;
};

constexpr std::array kKeyKinds{
    KeyKind{"string", KeyBinding::Kind::String},
    KeyKind{"numeric", KeyBinding::Kind::Numeric},
    KeyKind{"boolean", KeyBinding::Kind::Boolean},
};

// What a key without VALUETYPE is, by its TYPE; any other is a string.
constexpr std::array kKeyTypes{
    KeyKind{"boolean", KeyBinding::Kind::Boolean}, KeyKind{"uint8", KeyBinding::Kind::Numeric},
    KeyKind{"sint8", KeyBinding::Kind::Numeric},   KeyKind{"uint16", KeyBinding::Kind::Numeric},
    KeyKind{"sint16", KeyBinding::Kind::Numeric},  KeyKind{"uint32", KeyBinding::Kind::Numeric},
    KeyKind{"sint32", KeyBinding::Kind::Numeric},  KeyKind{"uint64", KeyBinding::Kind::Numeric},
    KeyKind{"sint64", KeyBinding::Kind::Numeric},  KeyKind{"real32", KeyBinding::Kind::Numeric},
    KeyKind{"real64", KeyBinding::Kind::Numeric},
};

template <class Table>
const KeyKind* findKind(const Table& table, std::string_view name) {
  const auto* found = std::find_if(table.begin(), table.end(),
                                   [name](const KeyKind& entry) { return entry.name == name; });
  return found != table.end() ? found : nullptr;
}

KeyBinding::Kind readKeyKind(const pugi::xml_node& element) {
  const pugi::xml_attribute valueType = element.attribute("VALUETYPE");
  if (!valueType) {
    const KeyKind* kind = findKind(kKeyTypes, element.attribute("TYPE").value());
    return kind != nullptr ? kind->kind : KeyBinding::Kind::String;
  }
  const KeyKind* kind = findKind(kKeyKinds, valueType.value());
  if (kind == nullptr) {
    refuse(std::string("a key of the type ") + valueType.value());
  }
  return kind->kind;
}

KeyBinding readKey(std::string name, const pugi::xml_node& element) {
  KeyBinding key;
  key.name = std::move(name);
  const std::string_view kind = element.name();
  if (kind == "KEYVALUE") {
    key.kind = readKeyKind(element);
    key.text = readText(element);
  } else if (kind == "VALUE.REFERENCE") {
    key.kind = KeyBinding::Kind::Reference;
    key.reference.push_back(readReference(element));
  } else {
    refuse(describe(element) + " is no key");
  }
  return key;
}

enum class Locality { Bare, Local, Hosted };

struct NameForm {
  std::string_view element;
  Locality locality;
  const char* inner;  // the element of the name within a path
  ObjectName (*read)(const pugi::xml_node& element);
};

constexpr std::array kNameForms{
    NameForm{"CLASSNAME", Locality::Bare, nullptr, readClassName},
    NameForm{"LOCALCLASSPATH", Locality::Local, "CLASSNAME", readClassName},
    NameForm{"CLASSPATH", Locality::Hosted, "CLASSNAME", readClassName},
    NameForm{"INSTANCENAME", Locality::Bare, nullptr, readInstanceName},
    NameForm{"LOCALINSTANCEPATH", Locality::Local, "INSTANCENAME", readInstanceName},
    NameForm{"INSTANCEPATH", Locality::Hosted, "INSTANCENAME", readInstanceName},
};

}  // namespace

std::string readLocalNamespacePath(const pugi::xml_node& element) {
  std::string path;
  Children children(element);
  do {
    const pugi::xml_node part = children.take("NAMESPACE");
    if (!path.empty()) {
      path += '/';
    }
    path += getAttribute(part, "NAME");
  } while (!children.isAtEnd());
  return path;
}

ObjectName readClassName(const pugi::xml_node& element) {
  ObjectName name;
  name.className = getAttribute(element, "NAME");
  Children(element).end();
  return name;
}

ObjectName readInstanceName(const pugi::xml_node& element) {
  ObjectName name;
  name.className = getAttribute(element, "CLASSNAME");
  name.isInstance = true;
  Children children(element);
  if (!children.isAtEnd() && !children.isAt("KEYBINDING")) {
    name.keys.push_back(readKey({}, children.take()));
    children.end();
  }
  while (!children.isAtEnd()) {
    const pugi::xml_node binding = children.take("KEYBINDING");
    Children values(binding);
    name.keys.push_back(readKey(getAttribute(binding, "NAME"), values.take()));
    if (name.keys.back().name.empty()) {
      refuse("a key of " + name.className + " has an empty name");
    }
    values.end();
  }
  return name;
}

ObjectName readName(const pugi::xml_node& element) {
  const std::string_view kind = element.name();
  const auto* form = std::find_if(kNameForms.begin(), kNameForms.end(),
                                  [kind](const NameForm& entry) { return entry.element == kind; });
  if (form == kNameForms.end()) {
    refuse(describe(element) + " names no object");
  }
  if (form->locality == Locality::Bare) {
    return form->read(element);
  }
  Children children(element);
  std::string host;
  std::string nameSpace;
  if (form->locality == Locality::Local) {
    nameSpace = readLocalNamespacePath(children.take("LOCALNAMESPACEPATH"));
  } else {
    Children path(children.take("NAMESPACEPATH"));
    host = readText(path.take("HOST"));
    nameSpace = readLocalNamespacePath(path.take("LOCALNAMESPACEPATH"));
    path.end();
  }
  ObjectName name = form->read(children.take(form->inner));
  children.end();
  name.host = std::move(host);
  name.nameSpace = std::move(nameSpace);
  return name;
}

ObjectName readReference(const pugi::xml_node& element) {
  Children children(element);
  ObjectName name = readName(children.take());
  children.end();
  return name;
}

}  // namespace cimxml
