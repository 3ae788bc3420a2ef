#include "core/CimSchema.h"

#include <algorithm>
#include <utility>

#include "Utils/Exception.h"
#include "core/CimPropertyRef.h"

namespace core {
namespace {

PropertyDeclaration declare(const CimProperty& property) {
  const auto* reference = dynamic_cast<const CimPropertyRef*>(&property);
  return {property.getName(), static_cast<CimType>(property.getType()), property.isKey(),
          reference != nullptr ? std::string(reference->getReferenceClass()) : std::string(),
          std::string()};
}

// A class that makes an inherited property a key declares it anew.
bool isInherited(const PropertyDeclaration& property, const PropertyDeclaration* inherited) {
  return inherited != nullptr && (inherited->isKey || !property.isKey);
}

std::vector<PropertyDeclaration> declareProperties(const CimSchema::Prototype& prototype,
                                                   const ClassDeclaration* superclass) {
  std::vector<PropertyDeclaration> properties;
  // All levels, with what is overridden.
  CimPropertyList::Iterator cursor = prototype.instance.getProperties().SafeList::iterator();
  std::size_t index = 0;
  for (const CimProperty* property = cursor.first(); property != nullptr;
       property = cursor.next(), ++index) {
    if (property->isOverridden()) {
      continue;
    }
    PropertyDeclaration declared = declare(*property);
    const PropertyDeclaration* inherited =
        superclass != nullptr && index < prototype.inheritedObjects
            ? superclass->findProperty(declared.name)
            : nullptr;
    declared.origin =
        isInherited(declared, inherited) ? inherited->origin : prototype.instance.getClassName();
    properties.push_back(std::move(declared));
  }
  return properties;
}

std::vector<MethodDeclaration> declareMethods(const CimSchema::Prototype& prototype,
                                              const ClassDeclaration* superclass) {
  std::vector<MethodDeclaration> methods =
      superclass != nullptr ? superclass->methods : std::vector<MethodDeclaration>();
  for (const MethodDeclaration& own : prototype.methods) {
    const auto overridden = std::find_if(
        methods.begin(), methods.end(),
        [&own](const MethodDeclaration& method) { return isSameName(method.name, own.name); });
    if (overridden != methods.end()) {
      *overridden = own;
    } else {
      methods.push_back(own);
    }
  }
  return methods;
}

}  // namespace

CimSchema::CimSchema() = default;

CimSchema::~CimSchema() = default;

void CimSchema::add(ClassDeclaration declaration) {
  if (const ClassDeclaration* known = find(declaration.name)) {
    if (*known != declaration) {
      throw utils::Exception("class %s is declared in two ways", declaration.name.c_str());
    }
    return;
  }
  const auto found = m_nodes.find(declaration.superclass);
  if (found == m_nodes.end() && !declaration.superclass.empty()) {
    throw utils::Exception("superclass %s of class %s is not declared",
                           declaration.superclass.c_str(), declaration.name.c_str());
  }
  Node* superclass = found != m_nodes.end() ? &found->second : &m_top;
  const std::string name = declaration.name;
  const auto added = m_nodes.emplace(name, Node{std::move(declaration), superclass, {}, {}}).first;
  const ClassDeclaration* newClass = &added->second.declaration;
  superclass->subclasses.push_back(newClass);
  for (Node* above = superclass; above != nullptr; above = above->superclass) {
    above->descendants.push_back(newClass);
  }
}

void CimSchema::add(const Prototype& prototype) {
  const ClassDeclaration* superclass = find(prototype.superclass);
  ClassDeclaration declaration;
  declaration.name = prototype.instance.getClassName();
  declaration.superclass = prototype.superclass;
  declaration.properties = declareProperties(prototype, superclass);
  declaration.methods = declareMethods(prototype, superclass);
  declaration.isAssociation = std::any_of(
      declaration.properties.begin(), declaration.properties.end(),
      [](const PropertyDeclaration& property) { return property.type == kCimReference; });
  add(std::move(declaration));
}

void CimSchema::addPlain(const std::string& className, const std::string& superclass) {
  const ClassDeclaration* model = find(superclass);
  ClassDeclaration declaration = model != nullptr ? *model : ClassDeclaration();
  declaration.name = className;
  declaration.superclass = superclass;
  add(std::move(declaration));
}

const ClassDeclaration* CimSchema::find(std::string_view className) const {
  const auto found = m_nodes.find(className);
  return found != m_nodes.end() ? &found->second.declaration : nullptr;
}

CimSchema::Classes CimSchema::getSuperclasses(std::string_view className) const {
  Classes chain;
  if (const Node* node = findNode(className); node != nullptr && node != &m_top) {
    for (node = node->superclass; node != &m_top; node = node->superclass) {
      chain.push_back(&node->declaration);
    }
  }
  return chain;
}

const CimSchema::Classes& CimSchema::getSubclasses(std::string_view className) const {
  static const Classes kNone;
  const Node* node = findNode(className);
  return node != nullptr ? node->subclasses : kNone;
}

const CimSchema::Classes& CimSchema::getDescendants(std::string_view className) const {
  static const Classes kNone;
  const Node* node = findNode(className);
  return node != nullptr ? node->descendants : kNone;
}

bool CimSchema::isA(std::string_view className, std::string_view ancestor) const {
  const Node* top = findNode(ancestor);
  const Node* node = findNode(className);
  while (node != nullptr && node != top) {
    node = node->superclass;
  }
  return node != nullptr;
}

const CimSchema::Node* CimSchema::findNode(std::string_view className) const {
  if (className.empty()) {
    return &m_top;
  }
  const auto found = m_nodes.find(className);
  return found != m_nodes.end() ? &found->second : nullptr;
}

}  // namespace core
