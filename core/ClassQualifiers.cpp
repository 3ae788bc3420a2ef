#include "core/ClassQualifiers.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>

namespace core {
namespace {

template <class Row>
const Row* findRow(std::span<const Row> rows, std::string_view name) {
  const auto found = std::find_if(rows.begin(), rows.end(),
                                  [name](const Row& row) { return isSameName(row.name, name); });
  return found != rows.end() ? &*found : nullptr;
}

void addTrue(ClassQualifiers::List& list, QualifierName name) {
  list.push_back({&getQualifier(name), true, {}});
}

void addText(ClassQualifiers::List& list, QualifierName name, std::string_view text) {
  if (!text.empty()) {
    list.push_back({&getQualifier(name), false, {text}});
  }
}

void addValues(ClassQualifiers::List& list, std::span<const ValueName> values) {
  if (values.empty()) {
    return;
  }
  Qualifier map{&getQualifier(QualifierName::ValueMap), false, {}};
  Qualifier names{&getQualifier(QualifierName::Values), false, {}};
  for (const ValueName& value : values) {
    map.texts.push_back(value.value);
    names.texts.push_back(value.name);
  }
  list.push_back(std::move(map));
  list.push_back(std::move(names));
}

// Lays a row under what rows of nearer classes say.
void addRow(ElementText& merged, const ElementText& row) {
  if (merged.description.empty()) {
    merged.description = row.description;
  }
  if (merged.values.empty()) {
    merged.values = row.values;
  }
  if (merged.unit.words.empty()) {
    merged.unit = row.unit;
  }
  merged.isWritable |= row.isWritable;
}

void addElementTexts(ClassQualifiers::List& list, const ElementText& text) {
  if (text.isWritable) {
    addTrue(list, QualifierName::Write);
  }
  addText(list, QualifierName::Description, text.description);
  addText(list, QualifierName::Units, text.unit.words);
  addText(list, QualifierName::PUnit, text.unit.programmatic);
  addValues(list, text.values);
}

}  // namespace

ClassQualifiers::ClassQualifiers(const CimSchema& schema, const ClassTexts& texts, Texts shown)
    : m_schema(schema), m_texts(texts), m_shown(shown) {}

ClassQualifiers::List ClassQualifiers::ofClass(const ClassDeclaration& declaration) const {
  List list;
  if (declaration.isAssociation) {
    addTrue(list, QualifierName::Association);
  }
  if (const ClassText* text = m_texts.find(declaration.name)) {
    if (text->isAbstract) {
      addTrue(list, QualifierName::Abstract);
    }
    addText(list, QualifierName::Version, text->version);
    addText(list, QualifierName::Description, text->description);
  }
  return list;
}

ClassQualifiers::List ClassQualifiers::ofProperty(const ClassDeclaration& declaration,
                                                  const PropertyDeclaration& property) const {
  List list;
  if (property.isKey) {
    addTrue(list, QualifierName::Key);
  }
  if (isOverriding(declaration, property, &ClassDeclaration::findProperty)) {
    addText(list, QualifierName::Override, property.name);
  }
  ElementText merged;
  for (const ClassText* text : getTexts(property.origin)) {
    if (const ElementText* row = findRow(text->properties, property.name)) {
      addRow(merged, *row);
    }
  }
  addElementTexts(list, merged);
  return list;
}

ClassQualifiers::List ClassQualifiers::ofMethod(const ClassDeclaration& declaration,
                                                const MethodDeclaration& method) const {
  List list;
  if (isOverriding(declaration, method, &ClassDeclaration::findMethod)) {
    addText(list, QualifierName::Override, method.name);
  }
  ElementText merged;
  for (const ClassText* text : getTexts(method.origin)) {
    if (const MethodText* row = findRow(text->methods, method.name)) {
      addRow(merged, {row->name, row->description, row->returns});
    }
  }
  addElementTexts(list, merged);
  return list;
}

ClassQualifiers::List ClassQualifiers::ofParameter(const MethodDeclaration& method,
                                                   const ParameterDeclaration& parameter) const {
  const bool isInput = parameter.direction == ParameterDirection::In;
  List list;
  list.push_back({&getQualifier(QualifierName::In), isInput, {}});
  if (!isInput) {
    addTrue(list, QualifierName::Out);
  }
  ElementText merged;
  for (const ClassText* text : getTexts(method.origin)) {
    const MethodText* row = findRow(text->methods, method.name);
    const ElementText* own = row != nullptr ? findRow(row->parameters, parameter.name) : nullptr;
    if (own != nullptr) {
      addRow(merged, *own);
    }
  }
  addElementTexts(list, merged);
  return list;
}

ClassQualifiers::Chain ClassQualifiers::getTexts(std::string_view className) const {
  Chain chain;
  if (const ClassText* own = m_texts.find(className)) {
    chain.push_back(own);
  }
  if (m_shown == Texts::Own) {
    return chain;
  }
  for (const ClassDeclaration* superclass : m_schema.getSuperclasses(className)) {
    if (const ClassText* text = m_texts.find(superclass->name)) {
      chain.push_back(text);
    }
  }
  return chain;
}

template <class Element>
bool ClassQualifiers::isOverriding(const ClassDeclaration& declaration, const Element& element,
                                   const Element* (ClassDeclaration::*find)(std::string_view)
                                       const) const {
  const ClassDeclaration* superclass = m_schema.find(declaration.superclass);
  return superclass != nullptr && isSameName(element.origin, declaration.name) &&
         (superclass->*find)(element.name) != nullptr;
}

std::vector<std::string_view> findTexts(const ClassQualifiers::List& list, QualifierName name) {
  const auto found = std::find_if(list.begin(), list.end(), [name](const Qualifier& qualifier) {
    return qualifier.declaration == &getQualifier(name);
  });
  return found != list.end() ? found->texts : std::vector<std::string_view>();
}

std::vector<ValueName> findValueNames(const ClassQualifiers::List& list) {
  const std::vector<std::string_view> values = findTexts(list, QualifierName::ValueMap);
  const std::vector<std::string_view> names = findTexts(list, QualifierName::Values);
  std::vector<ValueName> found;
  for (std::size_t index = 0; index < values.size() && index < names.size(); ++index) {
    found.push_back({values[index], names[index]});
  }
  return found;
}

}  // namespace core
